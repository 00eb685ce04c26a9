// score.h: how much a word says about a page.
//
// The search adds up the scores of the words that a page has of a query, and puts pages with more
// of the words first. Weights therefore decide among pages with the same words. They are made so
// that
// - a page stands first for the words of its own title: wherever a word stands in a title it weighs
//   more than anywhere else on the site, and more in a short title than in a long one;
// - otherwise a page gains by how often the word stands in its text (less and less with each time,
//   and less on a long page), by headings, description and address, and by the word's rarity.
// bench/relevance.py measures them.
#pragma once

#include <cstdint>

#include "indexer/collect/postings.h"

namespace vela::indexer {

// The word's page, and the site around it.
struct ScoreContext {
  uint32_t pageWords = 0;      // of the page's running text
  uint32_t titleWords = 0;     // different ones of the page's title
  uint32_t pagesWithWord = 0;  // of the site
  uint32_t pages = 0;          // of the site
  double averageWords = 0;     // of a page's running text
  bool inSomeTitle = false;    // a page of the site has the word in its title
  uint8_t mostOnPage = 0;      // the word's occurrences on the page that has most of them
};

// The score of a word that stands in titles keeps this much room above it (see WordScore).
constexpr uint8_t kBesideTitleLimit = 228;

// 1 to 255, and at least the number of occurrences, which is how far the phrase search looks: up to
// 255 for a word that no title has, up to kBesideTitleLimit for others. Without that room a page
// that repeats such a word hundreds of times would win against the page that is called by it.
uint8_t WordScore(const Posting& posting, const ScoreContext& context);

}  // namespace vela::indexer
