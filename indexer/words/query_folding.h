// query_folding.h: what the search program replaces in a query before it cuts it into words.
//
// The index brings this table along in its settings. It makes blanks of the signs that cut words on
// pages and that the query's own cut knows nothing of (dashes, curly quotes and apostrophes, "=",
// ";" ...), and one form of characters that readers take for the same ("ﬁ", full-width letters, the
// final sigma). Words of pages are folded alike, so a phrase is found as it stands on the page.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vela::indexer {

struct Folding {
  std::string from;  // at most 9 bytes, and no double quote
  std::string to;    // at most 4
};

// In the order in which they are applied, each to the whole text.
std::span<const Folding> QueryFoldings();

// A query as the search program folds it.
std::string FoldedQuery(std::string_view query);

// A word of a page as a query for it is folded; never longer than the word.
std::string FoldedWord(std::string_view word);

// Blanks what the table makes blanks inside a word of a page, byte for byte: signs, underscores
// that no letter or digit of ASCII follows, full stops that neither those nor what is left of the
// underscores follows, and hyphens before a blank.
void BlankFoldedSigns(std::string& text);

}  // namespace vela::indexer
