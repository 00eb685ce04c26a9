// weighed_score.h: the score of a page with Ranking.
//
// What the words weigh on the page (format/word_weight.h) adds up. The sum grows a little with the
// share of the terms that the page has, and with those that stand near each other; a title that has
// words of the query adds what they say, the more of the title they are the more, and more again
// when it has all of several terms. A page whose title is the query and nothing else stands before
// all others.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "search/page_weight.h"
#include "search/term_search.h"

namespace vela {

inline constexpr uint32_t kOneFactor = 256;  // a factor that leaves what it is multiplied with

// What is the same for all pages.
struct QueryWeights {
  uint32_t masses[kWeighedTerms] = {};  // WordMass of each term; 0: no page has it
  uint32_t total = 0;                   // of all terms
  // Factors by how many terms a page has, and how many of them are near.
  uint32_t foundFactors[kWeighedTerms + 1] = {};
  uint32_t nearFactors[kWeighedTerms + 1] = {};
};

// `effectiveTerms` are those that a page can match, `pageCount` the pages of the index.
QueryWeights WeighQuery(const TermSearch& search, int32_t effectiveTerms, int32_t pageCount);

// Scores are told in quarters of a weight.
inline constexpr uint32_t kScoreSteps = 4;

// What the title of a page adds to its score: it has some of the terms, and weighs `titleMass`.
uint64_t TitleScore(const QueryWeights& query, uint32_t titleTerms, uint32_t titleMass);

// The score, 1 at least, of a page on which the words weigh `sum`. `titleMass()` is asked only
// where the title has one of them.
template <typename TitleMass>
uint32_t WeighedScore(const QueryWeights& query, const PageWeight& page, uint32_t sum,
                      const TitleMass& titleMass) {
  const size_t near = std::min<size_t>(page.near, kWeighedTerms);
  uint64_t score = uint64_t{sum} * query.foundFactors[page.found] * query.nearFactors[near] *
                   kScoreSteps / (kOneFactor * kOneFactor);
  if (page.titleTerms != 0) score += TitleScore(query, page.titleTerms, titleMass());
  return static_cast<uint32_t>(std::clamp<uint64_t>(score, 1, UINT32_MAX));
}

// No page whose words weigh `most` or less has a higher score.
uint32_t HighestWeighedScore(const QueryWeights& query, uint32_t most);

}  // namespace vela
