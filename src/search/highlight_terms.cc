#include "search/highlight_terms.h"

#include <algorithm>

#include "text/wildcard.h"

namespace vela {

bool CollectHighlightTerms(HighlightTerms& highlight, const TermList& terms,
                           bool allowExactPhrase) {
  highlight.count = 0;
  if (!highlight.terms.TryAllocate(static_cast<size_t>(terms.size()))) return false;
  for (int32_t i = 0; i < terms.size(); ++i) {
    const std::string_view term = terms[i];
    if (term.starts_with('-') || ReadSiteRestriction(term).active) continue;
    const bool isPhrase = allowExactPhrase && term.find(' ') != term.npos;
    highlight.terms[static_cast<size_t>(highlight.count++)] = {term, HasWildcard(term), isPhrase};
  }
  return true;
}

bool MatchesTerm(TextMode mode, const HighlightTerm& term, std::string_view word) {
  if (term.isWildcard) return MatchesWildcard(word, term.text, mode.foldCase);
  return WordCompare(mode, term.text, word) == 0;
}

bool NextPhraseWord(std::string_view& phrase, std::string_view& word) {
  const size_t start = phrase.find_first_not_of(' ');
  if (start == phrase.npos) return false;
  phrase.remove_prefix(start);
  word = phrase.substr(0, phrase.find(' '));
  phrase.remove_prefix(std::min(word.size(), phrase.size()));
  return true;
}

}  // namespace vela
