// query.h: the query text, brought into the form of the index and cut into terms.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "settings/settings.h"
#include "text/fixed_text.h"
#include "text/owned_array.h"

namespace vela {

inline constexpr size_t kQuerySize = 2086;         // with terminator
inline constexpr size_t kDisplayQuerySize = 2135;  // with terminator

using QueryText = FixedText<kQuerySize>;
using DisplayQuery = FixedText<kDisplayQuerySize>;

// The terms of a query, exclusions (with their "-") behind all others. A term holding a blank came
// from quotes. Owns the texts.
struct TermList {
  OwnedArray<char> bytes;
  OwnedArray<std::string_view> terms;  // each NUL-terminated; at most 2085 bytes
  int32_t size() const { return static_cast<int32_t>(terms.size()); }
  std::string_view operator[](int32_t i) const { return terms[static_cast<size_t>(i)]; }
};

// A word of the query that is not searched for (stop_words.h).
struct DroppedWord {
  std::string_view word;  // in the settings
  int32_t place = 0;      // of the term ahead of which it stood; the number of terms: behind them
};

struct Query {
  QueryText typed;            // as the request has it
  DisplayQuery typedDisplay;  // escaped for HTML
  QueryText text;             // normalised
  DisplayQuery display;       // escaped for HTML
  TermList terms;
  OwnedArray<DroppedWord> dropped;  // by place
  bool hasPhrase = false;           // some character lay inside quotes
  bool isParsed = false;            // all but `typed` and `typedDisplay` is set
};

// Folds accents, lower-cases, and replaces what separates words by blanks, as the settings say.
void NormaliseQuery(QueryText& text, const Settings& settings);

// Cuts the normalised text into `terms`. False when memory is out.
[[nodiscard]] bool SplitQuery(std::string_view text, TermList& terms, bool& hasPhrase);

// Normalises what was typed and cuts it into terms. False when memory is out.
[[nodiscard]] bool ParseQuery(Query& query, const Settings& settings);

// Whether the term, with or without its "-", is a phrase: several words, where phrases are allowed.
bool IsPhrase(std::string_view term, const Settings& settings);

// Puts the asterisks of a substring search around the term's word: behind the "-" of an exclusion,
// and none where one stands already, around an empty word, a phrase or a site restriction.
QueryText SubstringTerm(std::string_view term, const Settings& settings);

// The term as it was before: without the asterisks around its word where the settings ask for a
// substring search (and AmendedAnswers).
std::string_view WithoutAddedAsterisks(std::string_view term, const Settings& settings);

// Puts them around every term where the settings ask for a substring search. False, and the terms
// as they were, when memory is out.
[[nodiscard]] bool AddSubstringAsterisks(TermList& terms, const Settings& settings);

// What the addresses of the pages must hold; the text belongs to a term.
struct SiteRestriction {
  bool active = false;
  std::string_view text;
};

// What the term restricts the search to, if it does; `word` has no "-".
SiteRestriction ReadSiteRestriction(std::string_view word);

}  // namespace vela
