// run_terms.h: terms in scripts without blanks between words, as the index has them (the setting
// CutRuns).
//
// The index holds the pieces of such a script (text/run_cut.h) as words of their own, so a term
// with several is a phrase of them and of what stands between: "Debianパッケージ" is the phrase
// "Debian パ ッ ケ ー ジ".
#pragma once

#include <string_view>

#include "search/query.h"
#include "settings/settings.h"

namespace vela {

// Cuts the terms that hold such pieces, exclusions and quoted phrases as well; restrictions to a
// site stay. Asterisks and question marks in such a term go, as phrases have no patterns and are
// found inside longer words anyway; of a longer term the first 64 words and pieces stay. Does
// nothing unless the settings ask for it. False, and the terms as they were, when memory is out.
[[nodiscard]] bool CutRunsOfTerms(TermList& terms, const Settings& settings);

// Whether a word of the query's text, between blanks and without quotes, reads as the term does: it
// was typed as one word, by somebody who may not know that it is a phrase.
bool IsTypedAsOneWord(std::string_view text, std::string_view term);

// A term as it reads: without the blanks that stand between two pieces. The view is into the term
// or into `joined`.
std::string_view JoinedRuns(std::string_view term, const Settings& settings, QueryText& joined);

}  // namespace vela
