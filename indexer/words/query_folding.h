// query_folding.h: what the search program replaces in a query before it cuts it into words.
//
// The index brings this table along in its settings. It has one form of characters that readers
// take for the same ("ﬁ", full-width letters, the final sigma, Arabic with and without vowels).
// Where the search program does not cut queries at signs by itself (text/sign_cut.h), the table
// also makes blanks of the signs that cut words on pages and that the query's own cut knows nothing
// of (dashes, curly quotes and apostrophes, "=", ";" ...), as far as there is room. Words of pages
// are folded alike, so a phrase is found as it stands on the page.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vela::indexer {

struct Folding {
  std::string from;  // at most 9 bytes, and no double quote
  std::string to;    // at most 4
};

// In the order in which they are applied, each to the whole text. `cutsSigns` is whether the search
// program cuts at signs by itself.
std::span<const Folding> QueryFoldings(bool cutsSigns);

// A query as the search program cuts and folds it.
std::string FoldedQuery(std::string_view query, bool cutsSigns);

// Whether the item is left out where words are stemmed as Turkish: the endings of words go by the
// dotless i.
bool IsUnfoldedInTurkish(const Folding& folding);

// A word of a page as a query for it is folded, which for `isTurkish` is without that item; never
// longer than the word. It may be in lower case (text/lower.h).
std::string FoldedWord(std::string_view word, bool isTurkish = false);

// A word in lower case without the bytes that lower-casing leaves of U+0130 behind each "i".
std::string WithoutRestsOfDottedI(std::string_view lower);

// Blanks what the table with all signs makes blanks inside a word of a page, byte for byte.
void BlankFoldedSigns(std::string& text);

}  // namespace vela::indexer
