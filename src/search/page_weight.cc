#include "search/page_weight.h"

#include <algorithm>
#include <bit>

#include "format/word_weight.h"

namespace vela {

uint32_t AddWeight(PageWeight& page, const WordMapRecord& record, int32_t term, uint32_t weight) {
  if (term >= kWeighedTerms) return weight;
  const uint32_t bit = uint32_t{1} << term;
  if (IsTitleWord(record.score)) page.titleTerms |= bit;
  const auto kept = static_cast<uint16_t>(std::min<uint32_t>(weight, UINT16_MAX));
  if (std::bit_floor(page.terms) == bit) {
    const uint16_t former = page.lastWeight;
    page.lastWeight = std::max(former, kept);
    page.lastBlocks |= record.proximity;
    return static_cast<uint32_t>(page.lastWeight - former);
  }
  if ((page.lastBlocks & record.proximity) != 0) ++page.near;
  page.terms |= bit;
  page.lastBlocks = record.proximity;
  page.lastWeight = kept;
  return weight;
}

}  // namespace vela
