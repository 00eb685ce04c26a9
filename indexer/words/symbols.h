// symbols.h: the signs between words.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vela::indexer {

// What a character is to a word.
enum class CharacterKind : uint8_t {
  kWord,     // a letter, a digit, a mark, or a sign that stands for letters ("\u2103")
  kSymbol,   // a sign that is shown
  kDropped,  // cuts words like a symbol, and is not shown
};
CharacterKind ClassifyCharacter(char32_t c);

// The signs beyond ASCII that queries are cut at, as they are part of the folding of queries;
// ascending. There is no room for all: other symbols (most emoji) stay parts of a query's words.
std::u32string_view QuerySymbols();

// A symbol that a query is not cut at.
bool IsPictograph(char32_t c);

// Whether `c` makes one picture together with the symbol `before` it, which may be one already: an
// emoji's variant or skin tone, the cap of a key, what a joiner joins, the second half of a flag.
bool GoesWithSymbol(std::string_view before, char32_t c);

// Between two words that are written without a blank: nothing to see, but a line may break there.
constexpr char32_t kWordBreakSign = 0x200B;

std::string Utf8Text(char32_t c);

// The character in UTF-8; one that means something in HTML as a reference.
std::string HtmlText(char32_t c);

// The character at `text[at]`, and its length in bytes through `length`. A byte that belongs to no
// character counts as one of its own, with the value U+FFFD.
char32_t DecodeCharacter(std::string_view text, size_t at, size_t& length);

}  // namespace vela::indexer
