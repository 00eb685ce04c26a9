// signs.h: what a character is to the words around it. Pages and queries are cut by this one table,
// so that a sign which ends a word on a page ends it in a query, too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vela {

enum class CharacterKind : uint8_t {
  kWord,       // a letter, a digit, a mark, or a sign that stands for letters ("\u2103")
  kSymbol,     // a sign that is written beside words; shown where a page has it
  kPicture,    // any other sign that is shown: emoji, arrows, mathematical and technical signs
  kDropped,    // cuts words like a symbol, and is not shown
  kBlank,      // a blank of any width, a line end, a control character
  kInvisible,  // takes no room and belongs to no word
  kHyphen,     // is written as "-"
};

// Characters beyond ASCII of one kind: `first` and the `more` behind it.
struct SignRange {
  char32_t first;
  uint16_t more;
  CharacterKind kind;
};

// All that are no kWord, in their order.
std::span<const SignRange> SignRanges();

// The kind of a character. Every sign of ASCII is a kSymbol.
CharacterKind KindOf(char32_t c);

// Whether `c` makes one picture together with the sign `before` it (UTF-8), which may be one
// already: an emoji's variant or skin tone, the cap of a key, what a joiner joins, the second half
// of a flag.
bool GoesWithSign(std::string_view before, char32_t c);

}  // namespace vela
