// highlight_terms.h: the terms of a query as the visitor typed them, to be marked in shown text.
#pragma once

#include <cstdint>
#include <string_view>

#include "search/query.h"
#include "settings/settings.h"
#include "text/owned_array.h"
#include "text/word_compare.h"

namespace vela {

// The text belongs to the query's term list.
struct HighlightTerm {
  std::string_view text;
  bool isWildcard = false;
  bool isPhrase = false;  // its words, between blanks, stand one after another
};

// Exclusions and site restrictions are not among them.
struct HighlightTerms {
  OwnedArray<HighlightTerm> terms;
  int32_t count = 0;
  const HighlightTerm* begin() const { return terms.begin(); }
  const HighlightTerm* end() const { return terms.begin() + count; }
};

// Collects the terms, before any stemming. False when memory is out.
[[nodiscard]] bool CollectHighlightTerms(HighlightTerms& highlight, const TermList& terms,
                                         bool allowExactPhrase);

// Whether a shown word is what the term, which is no phrase, asks for.
bool MatchesTerm(TextMode mode, const HighlightTerm& term, std::string_view word);

// Takes the next word of a phrase off its text; false when there is none.
bool NextPhraseWord(std::string_view& phrase, std::string_view& word);

}  // namespace vela
