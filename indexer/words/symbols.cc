#include "indexer/words/symbols.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <iterator>

namespace vela::indexer {

namespace {

// Ascending, for the search. Signs that words are never cut at (currency-like letters, emoji,
// mathematical letters) are not in here: they are parts of words, as they are in a query.
constexpr char32_t kSymbols[] = {
    U'!',   U'"',   U'#',   U'$',   U'%',   U'&',   U'\'',  U'(',   U')',   U'*',   U'+',   U',',
    U'-',   U'.',   U'/',   U':',   U';',   U'<',   U'=',   U'>',   U'?',   U'@',   U'[',   U'\\',
    U']',   U'^',   U'_',   U'`',   U'{',   U'|',   U'}',   U'~',   0x00A1, 0x00A3, 0x00A7, 0x00A9,
    0x00AB, 0x00AC, 0x00AE, 0x00B0, 0x00B1, 0x00B4, 0x00B7, 0x00BB, 0x00BF, 0x00D7, 0x00F7, 0x060C,
    0x061B, 0x061F, 0x0964, 0x0965, 0x2012, 0x2013, 0x2014, 0x2015, 0x2018, 0x2019, 0x201A, 0x201C,
    0x201D, 0x201E, 0x2020, 0x2021, 0x2022, 0x2026, 0x2030, 0x2032, 0x2033, 0x2039, 0x203A, 0x2044,
    0x20AC, 0x2122, 0x2190, 0x2191, 0x2192, 0x2193, 0x21D2, 0x2212, 0x2248, 0x2260, 0x2264, 0x2265,
    0x25CF, 0x2605, 0x2713, 0x3001, 0x3002, 0x3008, 0x3009, 0x300A, 0x300B, 0x300C, 0x300D, 0x300E,
    0x300F, 0x3010, 0x3011, 0x30FB, 0xFF01, 0xFF08, 0xFF09, 0xFF0C, 0xFF1A, 0xFF1B, 0xFF1F,
};
static_assert(std::is_sorted(std::begin(kSymbols), std::end(kSymbols)));

}  // namespace

CharacterKind ClassifyCharacter(char32_t c) {
  if (c < 0x80) {
    const bool letter = (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z');
    if (letter || (c >= U'0' && c <= U'9')) return CharacterKind::kWord;
  }
  if (std::ranges::binary_search(kSymbols, c)) return CharacterKind::kSymbol;
  const bool dropped = c == 0xFFFD || u_ispunct(static_cast<UChar32>(c)) != 0 || c < 0x80;
  return dropped ? CharacterKind::kDropped : CharacterKind::kWord;
}

std::u32string_view SymbolsBeyondAscii() {
  const auto* first = std::ranges::lower_bound(kSymbols, char32_t{0x80});
  return {first, static_cast<size_t>(std::end(kSymbols) - first)};
}

std::string Utf8Text(char32_t c) {
  uint8_t bytes[U8_MAX_LENGTH];
  size_t length = 0;
  U8_APPEND_UNSAFE(bytes, length, c);
  return std::string(reinterpret_cast<const char*>(bytes), length);
}

std::string HtmlText(char32_t c) {
  switch (c) {
    case U'"':
    case U'&':
    case U'\'':
    case U'<':
    case U'>':
      return "&#" + std::to_string(static_cast<uint32_t>(c)) + ";";
    default:
      break;
  }
  return Utf8Text(c);
}

char32_t DecodeCharacter(std::string_view text, size_t at, size_t& length) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  if (bytes[at] < 0x80) {
    length = 1;
    return bytes[at];
  }
  size_t i = at;
  UChar32 c = 0;
  U8_NEXT(bytes, i, text.size(), c);
  length = c < 0 ? 1 : i - at;
  return c < 0 ? 0xFFFD : static_cast<char32_t>(c);
}

}  // namespace vela::indexer
