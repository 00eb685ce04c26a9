// page_weight.h: what Ranking gathers of a page, term by term, beside what its words weigh.
#pragma once

#include <cstdint>

#include "index/word_map.h"

namespace vela {

// The terms that are told apart: the first ones of the query, a bit each.
inline constexpr int32_t kWeighedTerms = 32;

struct PageWeight {
  uint32_t terms = 0;       // that the page has
  uint32_t titleTerms = 0;  // that its title has
  uint16_t lastWeight = 0;  // of the term that was added last, 0xFFFF at most
  uint8_t lastBlocks = 0;   // its proximity byte
  uint8_t near = 0;         // terms that share a block of the text with the one added before
};
static_assert(sizeof(PageWeight) == 12);

// Adds a record of term `term`, whose words come one after another, where `weight` is its weight
// with the page's boost. Returns what the page gains: of several words of one term, such as those
// that fit a pattern, the heaviest counts.
uint32_t AddWeight(PageWeight& page, const WordMapRecord& record, int32_t term, uint32_t weight);

}  // namespace vela
