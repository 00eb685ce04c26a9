// word_weight.h: what a word weighs on a page for a search with Ranking (format/word_weight.h).
//
// It is a share of the word's mass, which grows less and less with how often the page has the word.
// An occurrence counts less on a page that is longer than most; title and headings count as some
// occurrences more. On a page that is little but links to others, words weigh less: such a list
// has the words of everything, and is hardly what was looked for. A word weighs more on the pages
// to which others lead by it (link_texts.h), and where a page says what it is about: in the first
// lines of its text, as far as its title does not have it. bench/relevance.py measures it.
#pragma once

#include <cstdint>

#include "indexer/collect/postings.h"

namespace vela::indexer {

// The word and its page.
struct WeightContext {
  uint32_t mass = 0;        // of the word, among the pages that have it elsewhere than in addresses
  uint32_t pageWords = 0;   // of the page's running text
  double averageWords = 0;  // of the running text of a page of the site
  double linkShare = 0;     // of the page's text, what stands in links to other pages; 0 to 1
  uint32_t linking = 0;     // pages that lead to the page by the word
  uint32_t mostLinking = 0;  // those of the page to which most lead by it
};

// The score byte of the word map.
uint8_t WordWeight(const Posting& posting, const WeightContext& context);

}  // namespace vela::indexer
