// suggestions.h: another spelling of a query that found little.
#pragma once

#include <cstdint>

#include "index/dictionary.h"
#include "index/spelling.h"
#include "search/query.h"
#include "search/term_search.h"
#include "settings/settings.h"
#include "text/stemmer.h"

namespace vela {

struct Suggestions {
  // The suggested query, and for a query of one term up to two alternatives.
  static constexpr int32_t kLimit = 3;
  FixedText<10240> texts[kLimit];  // a suggestion may be longer than the query was
  int32_t count = 0;               // 0: nothing to suggest
  // The texts are queries as they are typed, with their signs; otherwise words and blanks alone.
  bool asTyped = false;
};

// Whether a term of the query was found less often than SpellingWhenLessThan.
bool HasRareTerm(const TermSearch& search, const Settings& settings);

// Replaces each term with fewer records than SpellingWhenLessThan by a dictionary word that sounds
// alike; one for which there is none is left out, with the dropped words ahead of it.
Suggestions MakeSuggestions(const TermSearch& search, const SpellingTable& spelling,
                            const Dictionary& dictionary, const Settings& settings,
                            Stemmer& stemmer);

}  // namespace vela
