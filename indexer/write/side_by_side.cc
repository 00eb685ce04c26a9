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

// Which pairs of words may end a row. Nearly all that is read is none, and is told from those by a
// bit that its hash points at.
class EndsOfRows {
 public:
  explicit EndsOfRows(const std::vector<WordRow>& rows) : bits_(kBits / 64) {
    for (const WordRow& row : rows) {
      const uint64_t bit = BitOf(row.end()[-2], row.back());
      bits_[bit / 64] |= uint64_t{1} << bit % 64;
    }
  }
  bool MayEnd(uint32_t before, uint32_t last) const {
    const uint64_t bit = BitOf(before, last);
    return (bits_[bit / 64] >> bit % 64 & 1) != 0;
  }

 private:
  // Half a megabyte, which stays in the processor's cache.
  static constexpr uint64_t kBits = uint64_t{1} << 22;
  static uint64_t BitOf(uint32_t before, uint32_t last) {
    constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
    return PairOf(before, last) * kOdd / (UINT64_MAX / kBits + 1);
  }
  std::vector<uint64_t> bits_;
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
