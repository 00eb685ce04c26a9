// corrections.h: another spelling of a query that found little, by the letters that differ.
#pragma once

#include <string_view>

#include "index/dictionary.h"
#include "search/matches.h"
#include "search/suggestions.h"
#include "search/term_search.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/stemmer.h"

namespace vela {

// What the words of a query are corrected with; refers to records that outlive it.
struct CorrectionInput {
  const Settings& settings;
  const IndexDirectory& directory;  // the file of corrections is opened only when it is needed
  const Dictionary& dictionary;
  std::string_view wordMap;
  const Matches& matches;  // of all terms
  Stemmer& stemmer;
};

struct Corrections {
  Suggestions offers;
  // The first offer leaves no word out that is on no page, and no other one comes near it.
  bool isCertain = false;
};

// Whether the settings ask for corrections of this kind.
inline bool CorrectsByLetters(const Settings& s) {
  return s.Spelling == 1 && s.SpellingDistance == 1;
}

// Replaces each word of the query, those of phrases too, that is on fewer pages than
// SpellingWhenLessThan by one that is written nearly as it, on more pages, and nearest: by what the
// slips cost, by the pages that it is on, and by those that other terms found. What has no such
// word stays as it was typed; patterns, exclusions and restrictions of the addresses stay, too, and
// so do words that were dropped from the query.
Corrections MakeCorrections(const TermSearch& search, const CorrectionInput& input);

}  // namespace vela
