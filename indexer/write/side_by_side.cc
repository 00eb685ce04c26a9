#include "indexer/write/side_by_side.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#include "format/page_text.h"
#include "format/synonyms.h"
#include "indexer/site/print_table.h"

namespace vela::indexer {

namespace {

constexpr uint32_t kNoRow = 0xFFFFFFFF;

constexpr uint64_t PairOf(uint32_t first, uint32_t second) {
  return uint64_t{first} << 32 | second;
}

// The words read last, with no sign between them.
class LastWords {
 public:
  void Clear() { count_ = 0; }
  void Add(uint32_t word) { words_[count_++ % kKept] = word; }
  // The one before the last.
  uint32_t before() const { return words_[(count_ - 2) % kKept]; }
  bool EndWith(const WordRow& row) const {
    if (row.size() > std::min(count_, kKept)) return false;
    for (size_t i = 0; i < row.size(); ++i) {
      if (words_[(count_ - row.size() + i) % kKept] != row[i]) return false;
    }
    return true;
  }

 private:
  static constexpr size_t kKept = std::bit_ceil(kSynonymWordsLimit);
  std::array<uint32_t, kKept> words_ = {};  // word i at i % kKept
  size_t count_ = 0;                        // since the last sign
};

// What a word may be in a row; common words have the low numbers, so that what is asked for most
// often lies close together.
enum Role : uint8_t { kNoRole = 0, kLast = 1, kBeforeLast = 2 };

// Which words, and pairs of them, may end a row. Nearly all that is read is none, and is told from
// those by the roles of both words, then by a bit that the hash of the pair points at.
class EndsOfRows {
 public:
  explicit EndsOfRows(const std::vector<WordRow>& rows) : bits_(kBits / 64) {
    for (const WordRow& row : rows) {
      const uint32_t before = row.end()[-2];
      roles_.resize(std::max<size_t>(roles_.size(), size_t{std::max(before, row.back())} + 1));
      roles_[before] |= kBeforeLast;
      roles_[row.back()] |= kLast;
      const uint64_t bit = BitOf(before, row.back());
      bits_[bit / 64] |= uint64_t{1} << bit % 64;
    }
  }
  uint8_t RolesOf(uint32_t word) const {
    return word < roles_.size() ? roles_[word] : uint8_t{kNoRole};
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
  std::vector<uint8_t> roles_;  // by the word's number
  std::vector<uint64_t> bits_;
};

}  // namespace

std::vector<std::vector<RowPlace>> FindRows(InFile& pageText, const TextShape& shape,
                                            const std::vector<WordRow>& rows) {
  std::vector<std::vector<RowPlace>> places(rows.size());
  if (rows.empty() || !CanBeRead(shape)) return places;
  PrintTable<uint32_t> byLastTwo;                     // the last row that ends with these two words
  std::vector<uint32_t> former(rows.size(), kNoRow);  // beside the rows, the one before it
  for (uint32_t i = 0; i < rows.size(); ++i) {
    uint32_t& last = *byLastTwo.TryAdd(PairOf(rows[i].end()[-2], rows[i].back()), kNoRow).first;
    former[i] = std::exchange(last, i);
  }
  const EndsOfRows ends(rows);
  LastWords last;
  uint32_t page = 0;
  static_assert(kBeforeLast >> 1 == kLast);
  unsigned formerRoles = kNoRole;  // of the word before; none behind a sign
  ForEachToken(pageText, shape, [&](uint32_t word, uint64_t at) {
    if (int64_t{word} <= shape.lastSign) {
      last.Clear();
      formerRoles = kNoRole;
      if (word == kPageEndWord) ++page;
      return;
    }
    last.Add(word);
    const unsigned roles = ends.RolesOf(word);
    const bool mayEnd = (roles & formerRoles >> 1 & kLast) != 0;
    formerRoles = roles;
    if (!mayEnd || !ends.MayEnd(last.before(), word)) return;
    const uint32_t* const found = byLastTwo.Find(PairOf(last.before(), word));
    if (found == nullptr) return;
    for (uint32_t row = *found; row != kNoRow; row = former[row]) {
      if (!last.EndWith(rows[row])) continue;
      if (!places[row].empty() && places[row].back().page == page) continue;
      places[row].push_back({page, at - (rows[row].size() - 1) * shape.tokenBytes});
    }
  });
  return places;
}

}  // namespace vela::indexer
