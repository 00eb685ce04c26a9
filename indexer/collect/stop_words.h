// stop_words.h: the function words of the languages that the site is written in.
//
// assets/stop_words has a list for each language of the search page. What pages say of their own
// language is often missing or the template's; but no page of some length does without the
// commonest words of its language. So a language counts as one of the site's by the pages that hold
// such words.
#pragma once

#include <cstdint>
#include <string>

#include "indexer/collect/vocabulary.h"
#include "indexer/words/word_forms.h"

namespace vela::indexer {

// The stop words in UTF-8 with blanks between them, those of the language that is on most pages
// first; as many languages as fit into the setting whole. Empty when no language is found.
std::string StopWordsOf(const Vocabulary& vocabulary, uint64_t pages, WordForms& forms);

}  // namespace vela::indexer
