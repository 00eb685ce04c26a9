// Writes src/text/sign_table.inc: which characters cut words, from the Unicode database of ICU.
//
//   c++ -std=c++20 tools/make_sign_table.cc $(pkg-config --cflags --libs icu-uc) -o make_sign_table
//   ./make_sign_table >src/text/sign_table.inc
#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

// Signs beyond ASCII that are shown where a page has them, and that a query is cut at also where it
// knows nothing of this table: rows of a line of the settings, which is limited. So these are the
// signs that are written beside words most often. Ascending.
constexpr char32_t kSymbols[] = {
    0x00A1, 0x00A2, 0x00A3, 0x00A5, 0x00A7, 0x00A9, 0x00AB, 0x00AC, 0x00AE, 0x00B0, 0x00B1, 0x00B4,
    0x00B7, 0x00BB, 0x00BF, 0x00D7, 0x00F7, 0x060C, 0x061B, 0x061F, 0x0964, 0x0965, 0x2012, 0x2013,
    0x2014, 0x2015, 0x2018, 0x2019, 0x201A, 0x201C, 0x201D, 0x201E, 0x2020, 0x2021, 0x2022, 0x2026,
    0x2030, 0x2032, 0x2033, 0x2039, 0x203A, 0x2044, 0x20AC, 0x20B9, 0x2122, 0x2190, 0x2191, 0x2192,
    0x2193, 0x2194, 0x21D0, 0x21D2, 0x21D4, 0x2212, 0x2248, 0x2260, 0x2264, 0x2265, 0x25A0, 0x25A1,
    0x25B2, 0x25B6, 0x25B8, 0x25BA, 0x25BC, 0x25BE, 0x25C6, 0x25CB, 0x25CF, 0x2605, 0x2606, 0x260E,
    0x2665, 0x26A0, 0x2709, 0x2713, 0x2714, 0x2715, 0x2716, 0x2717, 0x2718, 0x2764, 0x276F, 0x2794,
    0x279C, 0x27A1, 0x2B05, 0x2B06, 0x2B07, 0x3001, 0x3002, 0x3008, 0x3009, 0x300A, 0x300B, 0x300C,
    0x300D, 0x300E, 0x300F, 0x3010, 0x3011, 0x301C, 0x30FB, 0xFF01, 0xFF08, 0xFF09, 0xFF0C, 0xFF1A,
    0xFF1B, 0xFF1F, 0xFF5E};
static_assert(std::is_sorted(std::begin(kSymbols), std::end(kSymbols)));

// Soft hyphen, zero-width space, marks of the writing direction, word joiner, byte order mark, and
// two that are no characters.
constexpr char32_t kInvisible[] = {0x00AD, 0x200B, 0x200E, 0x200F, 0x202A, 0x202B,
                                   0x202C, 0x202D, 0x202E, 0x2060, 0x2066, 0x2067,
                                   0x2068, 0x2069, 0xFEFF, 0xFFFE, 0xFFFF};

bool IsBlank(char32_t c) {
  return (c >= 0x80 && c < 0xA1) || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
         c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

bool IsHyphen(char32_t c) { return c == 0x2010 || c == 0x2011; }

// Variants of emoji and the cap of a key.
bool IsPartOfPicture(char32_t c) { return c == 0xFE0E || c == 0xFE0F || c == 0x20E3; }

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

bool IsSign(char32_t c) {
  constexpr uint32_t kSigns = U_GC_SO_MASK | U_GC_SM_MASK | U_GC_SC_MASK | U_GC_SK_MASK;
  return (U_GET_GC_MASK(static_cast<UChar32>(c)) & kSigns) != 0 && IsCommon(c) &&
         !StandsForOthers(c);
}

const char* KindOf(char32_t c) {
  if (std::ranges::count(kInvisible, c) != 0) return "kInvisible";
  if (IsBlank(c)) return "kBlank";
  if (IsHyphen(c)) return "kHyphen";
  if (std::ranges::binary_search(kSymbols, c)) return "kSymbol";
  if (c == 0xFFFD) return "kDropped";
  if (IsPartOfPicture(c) || IsSign(c)) return "kPicture";
  return u_ispunct(static_cast<UChar32>(c)) != 0 ? "kDropped" : nullptr;
}

}  // namespace

int main() {
  std::printf("// Made by tools/make_sign_table.cc from Unicode %s.\n", U_UNICODE_VERSION);
  const char* kind = nullptr;
  char32_t first = 0;
  for (char32_t c = 0x80; c <= 0x110000; ++c) {
    const char* next = c < 0x110000 ? KindOf(c) : nullptr;
    if (next == kind) continue;  // each kind is one literal
    if (kind != nullptr) {
      std::printf("{0x%04X, %u, CharacterKind::%s},\n", static_cast<unsigned>(first),
                  static_cast<unsigned>(c - 1 - first), kind);
    }
    kind = next;
    first = c;
  }
}
