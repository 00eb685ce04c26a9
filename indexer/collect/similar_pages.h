// similar_pages.h: which pages say nearly the same as one before them.
//
// The print of a text has 64 bits, each of which is what most of its shingles have there: texts
// that share nearly all of them differ in few bits.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>
#include <vector>

namespace vela::indexer {

// Texts of fewer words are not compared: forms and lists would be alike.
constexpr size_t kLeastSimilarWords = 100;
// Prints of texts that are nearly the same differ in so many bits at most.
constexpr int kSimilarBits = 3;

// The print of a clean text (see CleanText); none when it is too short.
std::optional<uint64_t> SimilarityPrint(std::string_view text);

// Pages come one by one, each with a number above those before. Takes 24 bytes of memory for each
// and a megabyte for all.
class SimilarPages {
 public:
  // The page before whose print differs least, of several the first; none when none is near enough.
  // Of more than a thousand that share a quarter of the print the last thousand are looked at.
  std::optional<uint32_t> SimilarTo(uint64_t print) const;
  void Add(uint64_t print, uint32_t page);
  // Bytes that it takes, nearly.
  size_t memory() const;

 private:
  // Prints that differ in three bits share one of these quarters.
  static constexpr size_t kQuarters = 4;
  struct Known {
    uint64_t print = 0;
    uint32_t page = 0;
    uint32_t before[kQuarters] = {};  // one more than the place of the last with the same; 0: none
  };

  std::deque<Known> known_;  // which never holds twice what it needs
  std::vector<uint32_t>
      last_;  // by quarter and its value, as `before`; empty before the first page
};

}  // namespace vela::indexer
