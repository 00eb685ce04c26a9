#include "search/weighed_score.h"

#include <algorithm>
#include <bit>

#include "format/word_weight.h"

namespace vela {

namespace {

// All of these were settled by bench/relevance.py (docs/search_quality.md).
constexpr uint32_t kOne = kOneFactor;
// The factor grows from here to kOne with the share of the terms that a page has.
constexpr uint32_t kFoundBase = kOne * 8 / 10;
// What is added to it where each term is near the one before.
constexpr uint32_t kNearGain = kOne / 10;
// How much more than the query itself says is given to the page that is called by it.
constexpr uint32_t kExactTitle = 4;
constexpr uint32_t kSteps = kScoreSteps;

// What a title adds of which so much is matched: all that its words say where it is covered, half
// a title a little more than a third of them.
uint64_t TitleGain(uint64_t matched, uint64_t cover) {
  return matched * kSteps * cover * (kOne + cover) / (2 * kOne * kOne);
}

// What a title that has all of several terms adds beside: somebody remembers it.
uint64_t KnownTitleGain(uint64_t matched, uint64_t cover) {
  return matched * kSteps * cover / kOne;
}

}  // namespace

QueryWeights WeighQuery(const TermSearch& search, int32_t effectiveTerms, int32_t pageCount) {
  QueryWeights query;
  const auto pages = static_cast<uint32_t>(std::max(pageCount, 1));
  const auto count = std::min<size_t>(search.terms.size(), kWeighedTerms);
  for (size_t i = 0; i < count; ++i) {
    const SearchedTerm& term = search.terms[i];
    if (term.shown.starts_with('-') || term.records <= 0) continue;
    query.masses[i] =
        term.mass != 0
            ? term.mass
            : WordMass(static_cast<uint32_t>(std::min<int64_t>(term.records, pages)), pages);
    query.total += query.masses[i];
  }
  const auto terms = static_cast<uint32_t>(std::clamp(effectiveTerms, 1, kWeighedTerms));
  for (uint32_t i = 0; i <= kWeighedTerms; ++i) {
    const uint32_t share = std::min(i, terms);
    query.foundFactors[i] = kFoundBase + (kOne - kFoundBase) * share / terms;
    query.nearFactors[i] =
        kOne + (terms < 2 ? 0 : kNearGain * std::min(i, terms - 1) / (terms - 1));
  }
  return query;
}

uint64_t TitleScore(const QueryWeights& query, uint32_t titleTerms, uint32_t titleMass) {
  if (titleMass == 0) return 0;
  uint32_t matched = 0;
  for (uint32_t terms = titleTerms; terms != 0; terms &= terms - 1) {
    matched += query.masses[std::countr_zero(terms)];
  }
  const uint32_t cover = std::min(kOne, matched * kOne / titleMass);
  uint64_t score = TitleGain(matched, cover);
  if (matched == query.total && std::popcount(titleTerms) > 1) {
    score += KnownTitleGain(matched, cover);
  }
  if (matched == query.total && matched >= titleMass) {
    score += uint64_t{query.total} * kExactTitle * kSteps;
  }
  return score;
}

uint32_t HighestWeighedScore(const QueryWeights& query, uint32_t most) {
  const uint64_t words = uint64_t{most} * kSteps * (kOne + kNearGain) / kOne;
  const uint64_t title = uint64_t{query.total} * kSteps * (2 + kExactTitle);
  return static_cast<uint32_t>(std::min<uint64_t>(words + title, UINT32_MAX));
}

}  // namespace vela
