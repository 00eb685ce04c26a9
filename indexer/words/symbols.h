// symbols.h: the signs between words, as pages have them (text/signs.h).
#pragma once

#include <string>
#include <string_view>

#include "text/signs.h"
#include "text/utf8.h"

namespace vela::indexer {

// What a character of clean text (see CleanText) is to a word of a page: kWord, kSymbol, which
// pictures are as well, or kDropped.
CharacterKind ClassifyCharacter(char32_t c);

// The signs beyond ASCII that queries are cut at also without the table of signs, as they are part
// of the folding of queries; ascending. There is no room for all: other symbols (most emoji) stay
// parts of a query's words.
std::u32string_view QuerySymbols();

// A symbol that such a query is not cut at.
bool IsPictograph(char32_t c);

// Between two words that are written without a blank: nothing to see, but a line may break there.
constexpr char32_t kWordBreakSign = 0x200B;
// A blank between two words that would be written without one.
constexpr char32_t kBlankSign = U' ';

std::string Utf8Text(char32_t c);

// The character in UTF-8; one that means something in HTML as a reference.
std::string HtmlText(char32_t c);

}  // namespace vela::indexer
