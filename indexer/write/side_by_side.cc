#include "indexer/write/side_by_side.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <unordered_map>

#include "format/page_text.h"
#include "format/synonyms.h"

namespace vela::indexer {

namespace {

constexpr uint64_t PairOf(uint32_t first, uint32_t second) {
  return uint64_t{first} << 32 | second;
}

// The words read last, with no sign between them.
struct LastWords {
  std::array<uint32_t, kSynonymWordsLimit> words = {};  // the last one first
  size_t count = 0;

  void Add(uint32_t word) {
    std::memmove(&words[1], &words[0], sizeof words - sizeof words[0]);
    words[0] = word;
    count = std::min(count + 1, words.size());
  }
  bool EndWith(const WordRow& row) const {
    return row.size() <= count && std::equal(row.rbegin(), row.rend(), words.begin());
  }
};

// Which words end a row, and which stand before those. Nearly all that is read is none of a row,
// and is told from these at the cost of a look.
class EndsOfRows {
 public:
  explicit EndsOfRows(const std::vector<WordRow>& rows) {
    for (const WordRow& row : rows) {
      Set(row.back(), kLast);
      Set(row.end()[-2], kBeforeLast);
    }
  }
  bool MayEnd(uint32_t before, uint32_t last) const {
    return Has(last, kLast) && Has(before, kBeforeLast);
  }

 private:
  static constexpr uint8_t kLast = 1;
  static constexpr uint8_t kBeforeLast = 2;
  void Set(uint32_t word, uint8_t bit) {
    if (word >= bits_.size()) bits_.resize(size_t{word} + 1);
    bits_[word] |= bit;
  }
  bool Has(uint32_t word, uint8_t bit) const {
    return word < bits_.size() && (bits_[word] & bit) != 0;
  }
  std::vector<uint8_t> bits_;  // by the number of the word
};

}  // namespace

std::vector<std::vector<RowPlace>> FindRows(InFile& pageText, const TextShape& shape,
                                            const std::vector<WordRow>& rows) {
  std::vector<std::vector<RowPlace>> places(rows.size());
  std::unordered_map<uint64_t, std::vector<size_t>> byLastTwo;
  for (size_t i = 0; i < rows.size(); ++i) {
    byLastTwo[PairOf(rows[i].end()[-2], rows[i].back())].push_back(i);
  }
  if (rows.empty() || !CanBeRead(shape)) return places;
  const EndsOfRows ends(rows);
  LastWords last;
  uint32_t page = 0;
  ForEachToken(pageText, shape, [&](uint32_t word, uint64_t at) {
    if (int64_t{word} <= shape.lastSign) {
      last.count = 0;
      if (word == kPageEndWord) ++page;
      return;
    }
    last.Add(word);
    if (last.count < 2 || !ends.MayEnd(last.words[1], word)) return;
    const auto found = byLastTwo.find(PairOf(last.words[1], word));
    if (found == byLastTwo.end()) return;
    for (const size_t row : found->second) {
      if (!last.EndWith(rows[row])) continue;
      if (!places[row].empty() && places[row].back().page == page) continue;
      places[row].push_back({page, at - (rows[row].size() - 1) * shape.tokenBytes});
    }
  });
  return places;
}

}  // namespace vela::indexer
