// page_match.h: what is kept of every page that a term matches.
#pragma once

#include <cstddef>
#include <cstdint>

#include "format/word_map.h"
#include "text/owned_array.h"

namespace vela {

// One page, all zero until a term matches it. A common word touches every page, so that the size of
// this record is what it costs.
struct PageMatch {
  uint32_t score = 0;         // of the word-map records added, saturating softly above 10000
  uint32_t termsMatched = 0;  // records that touched the page, those of exclusions included
  // Where the snippets start in the page text file, as wide as a position of the word map.
  uint32_t firstPositionLow = 0;
  uint8_t firstPositionHigh = 0;
  // AND of the proximity bytes of the records; with Ranking those of the last term, one in any.
  uint8_t proximityMask = 0;
  uint16_t termsInOrder = 0;  // terms matched without a gap, in query order

  uint64_t firstPosition() const { return uint64_t{firstPositionHigh} << 32 | firstPositionLow; }
};
static_assert(sizeof(PageMatch) == 16);
static_assert(kWordMapPositionWidth == 5);

// Where the snippets go on; 0 for nowhere.
struct FurtherPositions {
  uint8_t second[kWordMapPositionWidth] = {};  // little-endian
  uint8_t third[kWordMapPositionWidth] = {};
};
static_assert(sizeof(FurtherPositions) == 10);

// The records of all pages. Those that are touched lie close together, in groups of neighbours in
// the order in which the first of each was touched: a first look at memory costs more than anything
// that is done with a record, and a word on one page in ten would look at all of it.
class PageMatches {
 public:
  // False when the memory cannot be had.
  [[nodiscard]] bool TryAllocate(size_t pages) {
    const size_t groups = (pages + kGroup - 1) / kGroup;
    pageCount_ = 0;
    usedGroups_ = 0;
    if (!groups_.TryAllocate(groups) || !records_.TryAllocate((groups + 1) * kGroup) ||
        !further_.TryAllocate((groups + 1) * kGroup)) {
      return false;
    }
    pageCount_ = pages;
    return true;
  }
  size_t size() const { return pageCount_; }

  // The record of a page below size(), to be written to.
  PageMatch& Touch(uint32_t page) { return records_[PlaceToWrite(page)]; }
  FurtherPositions& TouchFurther(uint32_t page) { return further_[PlaceToWrite(page)]; }
  // To be read; of a page that was not touched it is all zero.
  const PageMatch& operator[](uint32_t page) const { return records_[PlaceOf(page)]; }
  const FurtherPositions& Further(uint32_t page) const { return further_[PlaceOf(page)]; }

 private:
  static constexpr size_t kGroup = 4;

  size_t PlaceOf(uint32_t page) const {
    return size_t{groups_[page / kGroup]} * kGroup + page % kGroup;
  }
  size_t PlaceToWrite(uint32_t page) {
    uint32_t& group = groups_[page / kGroup];
    if (group == 0) group = ++usedGroups_;
    return size_t{group} * kGroup + page % kGroup;
  }

  size_t pageCount_ = 0;
  uint32_t usedGroups_ = 0;
  OwnedArray<uint32_t> groups_;  // where the records of kGroup pages lie; 0, which nobody has: none
  OwnedArray<PageMatch> records_;
  OwnedArray<FurtherPositions> further_;
};

}  // namespace vela
