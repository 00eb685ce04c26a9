// score.h: how much a word says about a page.
#pragma once

#include <cstdint>

#include "indexer/postings.h"

namespace vela::indexer {

// The word's page, and the site around it.
struct ScoreContext {
  uint32_t pageWords = 0;      // of the page's running text
  uint32_t titleWords = 0;     // of the page's title
  uint32_t pagesWithWord = 0;  // of the site
  uint32_t pages = 0;          // of the site
  double averageWords = 0;     // of a page's running text
};

// 1 to 255, and at least the number of occurrences (the phrase search counts on that).
uint8_t WordScore(const Posting& posting, const ScoreContext& context);

// The setting WeightProximity that the scores are made for.
int32_t ProximityWeight();

}  // namespace vela::indexer
