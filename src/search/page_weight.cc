#include "search/page_weight.h"

namespace vela {

bool PageWeights::TryAllocate(size_t pages, bool hasSeveralTerms) {
  words_ = pages / 64 + 1;
  bits_ = words_ * kWeighedTerms;
  const size_t bytes = words_ * 8;  // a byte a page takes so many of the block's elements
  if (!memory_.TryAllocate(2 * bits_ + words_ + 3 * bytes)) return false;
  terms_ = memory_.data();
  titles_ = terms_ + 2 * bits_;
  uint64_t* const behindBits = titles_ + words_;
  near_ = hasSeveralTerms ? reinterpret_cast<uint8_t*>(behindBits) : nullptr;
  lastWeights_ = reinterpret_cast<uint16_t*>(behindBits + bytes);
  return true;
}

TermWeights PageWeights::StartTerm(int32_t term, bool hasSeveralWords) {
  TermWeights weights;
  if (term >= kWeighedTerms) return weights;
  termCount_ = std::max(termCount_, term + 1);
  weights.terms_ = terms_ + static_cast<size_t>(term) * words_;
  weights.titleTerms_ = weights.terms_ + bits_;
  weights.titles_ = titles_;
  weights.near_ = near_;
  weights.lastWeights_ = hasSeveralWords ? lastWeights_ : nullptr;
  return weights;
}

}  // namespace vela
