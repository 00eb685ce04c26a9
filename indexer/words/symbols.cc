#include "indexer/words/symbols.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <iterator>

namespace vela::indexer {

namespace {

// What a query is cut at, and pages alike. Ascending, for the search. Each takes ten bytes of the
// two lines that hold the folding of queries, and a line of the settings is limited: these are the
// signs that are written beside words most often.
constexpr char32_t kSymbols[] = {
    U'!',   U'"',   U'#',   U'$',   U'%',   U'&',   U'\'',  U'(',   U')',   U'*',   U'+',   U',',
    U'-',   U'.',   U'/',   U':',   U';',   U'<',   U'=',   U'>',   U'?',   U'@',   U'[',   U'\\',
    U']',   U'^',   U'_',   U'`',   U'{',   U'|',   U'}',   U'~',   0x00A1, 0x00A2, 0x00A3, 0x00A5,
    0x00A7, 0x00A9, 0x00AB, 0x00AC, 0x00AE, 0x00B0, 0x00B1, 0x00B4, 0x00B7, 0x00BB, 0x00BF, 0x00D7,
    0x00F7, 0x060C, 0x061B, 0x061F, 0x0964, 0x0965, 0x2012, 0x2013, 0x2014, 0x2015, 0x2018, 0x2019,
    0x201A, 0x201C, 0x201D, 0x201E, 0x2020, 0x2021, 0x2022, 0x2026, 0x2030, 0x2032, 0x2033, 0x2039,
    0x203A, 0x2044, 0x20AC, 0x20B9, 0x2122, 0x2190, 0x2191, 0x2192, 0x2193, 0x2194, 0x21D0, 0x21D2,
    0x21D4, 0x2212, 0x2248, 0x2260, 0x2264, 0x2265, 0x25A0, 0x25A1, 0x25B2, 0x25B6, 0x25B8, 0x25BA,
    0x25BC, 0x25BE, 0x25C6, 0x25CB, 0x25CF, 0x2605, 0x2606, 0x260E, 0x2665, 0x26A0, 0x2709, 0x2713,
    0x2714, 0x2715, 0x2716, 0x2717, 0x2718, 0x2764, 0x276F, 0x2794, 0x279C, 0x27A1, 0x2B05, 0x2B06,
    0x2B07, 0x3001, 0x3002, 0x3008, 0x3009, 0x300A, 0x300B, 0x300C, 0x300D, 0x300E, 0x300F, 0x3010,
    0x3011, 0x301C, 0x30FB, 0xFF01, 0xFF08, 0xFF09, 0xFF0C, 0xFF1A, 0xFF1B, 0xFF1F, 0xFF5E};
static_assert(std::is_sorted(std::begin(kSymbols), std::end(kSymbols)));

constexpr char32_t kTextVariant = 0xFE0E;
constexpr char32_t kEmojiVariant = 0xFE0F;
constexpr char32_t kKeyCap = 0x20E3;
constexpr char32_t kJoiner = 0x200D;
// Bytes of a picture made of several characters: a family of four with skin tones has 41.
constexpr size_t kPictureBytesLimit = 64;

bool IsSkinTone(char32_t c) { return c >= 0x1F3FB && c <= 0x1F3FF; }
bool IsFlagHalf(char32_t c) { return c >= 0x1F1E6 && c <= 0x1F1FF; }
bool IsTag(char32_t c) { return c >= 0xE0020 && c <= 0xE007F; }  // spells the flag of a region

// Whether the character stands for other characters, as "\u2460" for "1". Those that only look
// alike under canonical equivalence are no such.
bool StandsForOthers(char32_t c) {
  const int32_t type = u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_DECOMPOSITION_TYPE);
  return type != U_DT_NONE && type != U_DT_CANONICAL;
}

// The signs of one script (Sindhi "\u06FD", Tibetan) are written inside its words.
bool IsCommon(char32_t c) {
  UErrorCode status = U_ZERO_ERROR;
  return uscript_getScript(static_cast<UChar32>(c), &status) == USCRIPT_COMMON && U_SUCCESS(status);
}

}  // namespace

bool IsPictograph(char32_t c) {
  if (c < 0x80) return false;
  if (c == kTextVariant || c == kEmojiVariant || c == kKeyCap || c == kWordBreakSign) return true;
  constexpr uint32_t kSigns = U_GC_SO_MASK | U_GC_SM_MASK | U_GC_SC_MASK | U_GC_SK_MASK;
  if ((U_GET_GC_MASK(static_cast<UChar32>(c)) & kSigns) == 0) return false;
  return c != 0xFFFD && IsCommon(c) && !StandsForOthers(c) &&
         !std::ranges::binary_search(kSymbols, c);
}

bool GoesWithSymbol(std::string_view before, char32_t c) {
  if (before.empty() || before.size() > kPictureBytesLimit) return false;
  size_t length = 0;
  const char32_t first = DecodeCharacter(before, 0, length);
  if (first < 0x80) return false;
  if (c == kTextVariant || c == kEmojiVariant || c == kKeyCap) return true;
  if (c == kJoiner || IsTag(c) || IsSkinTone(c)) return true;
  if (IsFlagHalf(c)) return IsFlagHalf(first) && length == before.size();
  return before.ends_with(Utf8Text(kJoiner)) && ClassifyCharacter(c) == CharacterKind::kSymbol;
}

CharacterKind ClassifyCharacter(char32_t c) {
  if (c < 0x80) {
    const bool letter = (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z');
    if (letter || (c >= U'0' && c <= U'9')) return CharacterKind::kWord;
  }
  if (std::ranges::binary_search(kSymbols, c) || IsPictograph(c)) return CharacterKind::kSymbol;
  const bool dropped = c == 0xFFFD || u_ispunct(static_cast<UChar32>(c)) != 0 || c < 0x80;
  return dropped ? CharacterKind::kDropped : CharacterKind::kWord;
}

std::u32string_view QuerySymbols() {
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
