#include "indexer/write/pair_table.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "format/index_directory.h"
#include "format/page_text.h"
#include "format/word_map.h"
#include "indexer/write/in_file.h"
#include "indexer/write/pair_rows.h"

namespace vela::indexer {

namespace {

// Goes through a page text: calls `pair(first, second)` for two words beside each other, and
// `end(next)` behind every text with the place of the next one.
template <typename Pair, typename End>
void ReadTexts(InFile& text, const TextShape& shape, Pair pair, End end) {
  uint32_t former = kPageEndWord;  // the word before in this stretch of text; none yet
  bool isEnded = true;
  const uint64_t size = ForEachToken(text, shape, [&](uint32_t word, uint64_t at) {
    if (EndsRun(word)) {
      former = kPageEndWord;
      if (word != kPageEndWord) return;
      end(at + shape.tokenBytes);
      isEnded = true;
    } else if (int64_t{word} > shape.lastSign) {
      if (former != kPageEndWord) pair(former, word);
      former = word;
      isEnded = false;
    }
  });
  if (!isEnded) end(size);
}

}  // namespace

PairTable::PairTable(const std::filesystem::path& folder, const TextShape& text,
                     uint32_t pairedWords)
    : records_(folder / "pairs.tmp") {
  InFile pageText(folder / kPageTextFileName);
  if (!pageText.isOpen() || !CanBeRead(text)) return;
  PairRows rows;
  uint64_t written = 0;
  texts_.push_back(MakeLookupText(0, 0));
  ReadTexts(
      pageText, text,
      [&](uint32_t first, uint32_t second) {
        if (first < pairedWords && second < pairedWords) rows.Add(first, second);
      },
      [&](uint64_t next) {
        const std::span<const WordPairs> records = rows.Finish();
        records_.Append({reinterpret_cast<const char*>(records.data()), records.size_bytes()});
        written += records.size();
        texts_.push_back(MakeLookupText(next, static_cast<uint32_t>(written)));
      });
  const bool isTold = written <= UINT32_MAX && StartOf(texts_.back()) <= kPositionLimit;
  if (!isTold) texts_.clear();
}

void PairTable::ReadPortion(uint64_t at) {
  constexpr uint64_t kPortion = 4096;  // records
  const uint64_t left = (records_.size() - at) / sizeof(WordPairs);
  portion_.resize(static_cast<size_t>(std::min(left, kPortion)));
  records_.Read(at,
                {reinterpret_cast<char*>(portion_.data()), portion_.size() * sizeof(WordPairs)});
}

}  // namespace vela::indexer
