// page_weight.h: what Ranking gathers of the pages, term by term, beside what their words weigh.
#pragma once

#include <cstddef>
#include <cstdint>

#include "index/word_map.h"
#include "text/owned_array.h"

namespace vela {

// The terms that are told apart: the first ones of the query.
inline constexpr int32_t kWeighedTerms = 32;

// Of one page; a bit for each term, that of the first one the lowest.
struct PageWeight {
  uint32_t terms = 0;       // that the page has
  uint32_t titleTerms = 0;  // that its title has
  uint8_t near = 0;         // terms that share a block of the text with the one added before
};

// Of all pages. Most queries have few terms, and a common one touches every page: a bit a page and
// term keeps small what such a query has to write.
class PageWeights {
 public:
  // For a query of one term nothing is near. False when memory is out.
  [[nodiscard]] bool TryAllocate(size_t pages, bool hasSeveralTerms);
  bool empty() const { return memory_.empty(); }

  // Adds a record of term `term`, whose records come behind those of the terms before it, where
  // `weight` is its weight with the page's boost. Returns what the page gains: where the term has
  // several words, those that fit a pattern, the heaviest counts.
  uint32_t Add(const WordMapRecord& record, int32_t term, bool hasSeveralWords, uint32_t weight);

  PageWeight At(uint32_t page) const {
    PageWeight weight = {.near = near_ != nullptr ? near_[page] : uint8_t{0}};
    for (int32_t term = 0; term < termCount_; ++term) {
      const size_t place = PlaceOf(term, page);
      weight.terms |= static_cast<uint32_t>(terms_[place] >> page % 64 & 1) << term;
      weight.titleTerms |= static_cast<uint32_t>(titleTerms_[place] >> page % 64 & 1) << term;
    }
    return weight;
  }

 private:
  size_t PlaceOf(int32_t term, uint32_t page) const {
    return static_cast<size_t>(term) * words_ + page / 64;
  }

  size_t words_ = 0;       // of 64 bits, for one bit a page
  int32_t termCount_ = 0;  // up to the last one that was added
  // One block for all, so that of a large site's only what is written to is ever touched.
  OwnedArray<uint64_t> memory_;
  uint64_t* terms_ = nullptr;        // the bits of the pages, term behind term
  uint64_t* titleTerms_ = nullptr;   // likewise
  uint8_t* near_ = nullptr;          // see PageWeight; a page each, as those below; or null
  uint8_t* lastBlocks_ = nullptr;    // the proximity bytes of the term that was added last
  uint16_t* lastWeights_ = nullptr;  // the weight of that term where it has several words
};

}  // namespace vela
