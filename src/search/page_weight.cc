#include "search/page_weight.h"

#include <algorithm>

#include "format/word_weight.h"

namespace vela {

bool PageWeights::TryAllocate(size_t pages, bool hasSeveralTerms) {
  words_ = pages / 64 + 1;
  const size_t bits = words_ * kWeighedTerms;
  const size_t bytes = words_ * 8;  // a byte a page takes so many of the block's elements
  if (!memory_.TryAllocate(2 * bits + 4 * bytes)) return false;
  terms_ = memory_.data();
  titleTerms_ = terms_ + bits;
  near_ = hasSeveralTerms ? reinterpret_cast<uint8_t*>(titleTerms_ + bits) : nullptr;
  lastBlocks_ = reinterpret_cast<uint8_t*>(titleTerms_ + bits + bytes);
  lastWeights_ = reinterpret_cast<uint16_t*>(titleTerms_ + bits + 2 * bytes);
  return true;
}

uint32_t PageWeights::Add(const WordMapRecord& record, int32_t term, bool hasSeveralWords,
                          uint32_t weight) {
  if (term >= kWeighedTerms) return weight;
  termCount_ = std::max(termCount_, term + 1);
  const uint32_t page = record.page;
  const size_t place = PlaceOf(term, page);
  const uint64_t bit = uint64_t{1} << page % 64;
  const bool isAnotherWord = (terms_[place] & bit) != 0;
  terms_[place] |= bit;
  if (IsTitleWord(record.score)) titleTerms_[place] |= bit;
  if (near_ != nullptr) {
    uint8_t& blocks = lastBlocks_[page];
    if (isAnotherWord) {
      blocks |= record.proximity;
    } else {
      if ((blocks & record.proximity) != 0) ++near_[page];
      blocks = record.proximity;
    }
  }
  if (!hasSeveralWords) return weight;
  const auto kept = static_cast<uint16_t>(std::min<uint32_t>(weight, UINT16_MAX));
  const uint16_t former = isAnotherWord ? lastWeights_[page] : uint16_t{0};
  lastWeights_[page] = std::max(former, kept);
  return isAnotherWord ? static_cast<uint32_t>(lastWeights_[page] - former) : weight;
}

}  // namespace vela
