// symbols.h: the signs between words.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vela::indexer {

// What a character is to a word.
enum class CharacterKind : uint8_t {
  kWord,     // a letter, a digit, a mark, or a sign that is not in the table
  kSymbol,   // a sign that is shown
  kDropped,  // cuts words like a symbol, and is not shown
};
CharacterKind ClassifyCharacter(char32_t c);

// All that are shown, but those of ASCII; ascending.
std::u32string_view SymbolsBeyondAscii();

std::string Utf8Text(char32_t c);

// The character in UTF-8; one that means something in HTML as a reference.
std::string HtmlText(char32_t c);

// The character at `text[at]`, and its length in bytes through `length`. A byte that belongs to no
// character counts as one of its own, with the value U+FFFD.
char32_t DecodeCharacter(std::string_view text, size_t at, size_t& length);

}  // namespace vela::indexer
