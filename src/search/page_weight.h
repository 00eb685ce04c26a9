// page_weight.h: what Ranking gathers of the pages, term by term, beside what their words weigh.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "format/word_weight.h"
#include "index/word_map.h"
#include "text/owned_array.h"

namespace vela {

// The terms that are told apart: the first ones of the query.
inline constexpr int32_t kWeighedTerms = 32;

// Of one page.
struct PageWeight {
  uint32_t found = 0;       // how many of the terms it has
  uint32_t titleTerms = 0;  // that its title has: a bit for each, that of the first one the lowest
  uint8_t near = 0;         // terms that share a block of the text with the one added before
};

// Where the records of one term go; of PageWeights::StartTerm.
class TermWeights {
 public:
  // Adds a record of a page that no term has met before, where `weight` is its weight with the
  // page's boost.
  void AddFirst(const WordMapRecord& record, uint32_t weight) const {
    if (terms_ == nullptr) return;
    const uint64_t bit = uint64_t{1} << record.page % 64;
    terms_[record.page / 64] |= bit;
    if (IsTitleWord(record.score)) AddTitle(record.page / 64, bit);
    if (lastWeights_ != nullptr) lastWeights_[record.page] = Kept(weight);
  }

  // Adds a record of any page. `blocks` are those of the text in which the term that was added last
  // stands. Returns what the page gains: where the term has several words, those that fit a
  // pattern, the heaviest counts.
  uint32_t Add(const WordMapRecord& record, uint32_t weight, uint8_t& blocks) const {
    if (terms_ == nullptr) return weight;
    const uint32_t page = record.page;
    const uint64_t bit = uint64_t{1} << page % 64;
    uint64_t& terms = terms_[page / 64];
    const bool isAnotherWord = (terms & bit) != 0;
    terms |= bit;
    if (IsTitleWord(record.score)) AddTitle(page / 64, bit);
    if (isAnotherWord) {
      blocks |= record.proximity;
    } else {
      if (near_ != nullptr && (blocks & record.proximity) != 0) ++near_[page];
      blocks = record.proximity;
    }
    if (lastWeights_ == nullptr) return weight;
    const uint16_t kept = Kept(weight);
    const uint16_t former = isAnotherWord ? lastWeights_[page] : uint16_t{0};
    lastWeights_[page] = std::max(former, kept);
    return isAnotherWord ? static_cast<uint32_t>(lastWeights_[page] - former) : weight;
  }

 private:
  friend class PageWeights;

  static uint16_t Kept(uint32_t weight) {
    return static_cast<uint16_t>(std::min<uint32_t>(weight, UINT16_MAX));
  }
  void AddTitle(size_t place, uint64_t bit) const {
    titleTerms_[place] |= bit;
    titles_[place] |= bit;
  }

  uint64_t* terms_ = nullptr;        // a bit a page; null: nothing is kept of the term
  uint64_t* titleTerms_ = nullptr;   // likewise
  uint64_t* titles_ = nullptr;       // of PageWeights
  uint8_t* near_ = nullptr;          // of PageWeights; or null
  uint16_t* lastWeights_ = nullptr;  // of PageWeights where the term has several words; or null
};

// Of all pages. Most queries have few terms, and a common one touches every page: a bit a page and
// term keeps small what such a query has to write.
class PageWeights {
 public:
  // For a query of one term nothing is near. False when memory is out.
  [[nodiscard]] bool TryAllocate(size_t pages, bool hasSeveralTerms);
  bool empty() const { return memory_.empty(); }

  // Takes the records of term `term` from now on, behind those of the terms before it.
  TermWeights StartTerm(int32_t term, bool hasSeveralWords);

  PageWeight At(uint32_t page) const {
    const size_t at = page / 64;
    const auto bitAt = [shift = page % 64](uint64_t bits) {
      return static_cast<uint32_t>(bits >> shift & 1);
    };
    const uint64_t* place = terms_ + at;
    PageWeight weight = {.found = bitAt(*place)};
    if (near_ != nullptr) weight.near = near_[page];
    for (int32_t term = 1; term < termCount_; ++term) weight.found += bitAt(*(place += words_));
    if (bitAt(titles_[at]) == 0) return weight;
    place = terms_ + bits_ + at;
    for (int32_t term = 0; term < termCount_; ++term, place += words_) {
      weight.titleTerms |= bitAt(*place) << term;
    }
    return weight;
  }

 private:
  size_t words_ = 0;       // of 64 bits, for one bit a page
  size_t bits_ = 0;        // of `terms_`, in words of 64 bits
  int32_t termCount_ = 0;  // up to the last one that was added
  // One block for all, so that of a large site's only what is written to is ever touched.
  OwnedArray<uint64_t> memory_;
  uint64_t* terms_ = nullptr;        // the bits of the pages, term behind term; then of the titles
  uint64_t* titles_ = nullptr;       // a bit for a page whose title has any term
  uint8_t* near_ = nullptr;          // see PageWeight; a page each, as those below; or null
  uint16_t* lastWeights_ = nullptr;  // the weight of that term where it has several words
};

}  // namespace vela
