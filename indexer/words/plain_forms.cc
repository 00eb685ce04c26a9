#include "indexer/words/plain_forms.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>

#include "indexer/words/eight_bytes.h"
#include "indexer/words/lower_copy.h"
#include "indexer/words/symbols.h"

namespace vela::indexer {

namespace {

// The digits of Arabic and Persian, as they are typed on the web.
char32_t PlainDigit(char32_t c) {
  for (const char32_t zero : {char32_t{0x0660}, char32_t{0x06F0}}) {
    if (c >= zero && c <= zero + 9) return U'0' + (c - zero);
  }
  return c;
}

char32_t PlainLetter(char32_t c) {
  switch (c) {
    case 0x00D8:
    case 0x00F8:
      return U'o';
    case 0x0110:
    case 0x0111:
    case 0x00D0:
    case 0x00F0:
      return U'd';
    case 0x0130:
    case 0x0131:
      return U'i';
    case 0x0141:
    case 0x0142:
      return U'l';
    case 0x0401:
    case 0x0451:
      return 0x0435;
    default:
      return PlainDigit(c);
  }
}

std::string_view PlainPair(char32_t c) {
  switch (c) {
    case 0x00DF:
    case 0x1E9E:
      return "ss";
    case 0x00C6:
    case 0x00E6:
      return "ae";
    case 0x0152:
    case 0x0153:
      return "oe";
    case 0x00DE:
    case 0x00FE:
      return "th";
    default:
      return {};
  }
}

// What German, Danish and Swedish write where a letter is missing.
std::string_view WrittenOut(char32_t c) {
  switch (c) {
    case 0x00C4:
    case 0x00E4:
      return "ae";
    case 0x00D6:
    case 0x00F6:
    case 0x00D8:
    case 0x00F8:
      return "oe";
    case 0x00DC:
    case 0x00FC:
      return "ue";
    case 0x00C5:
    case 0x00E5:
      return "aa";
    default:
      return {};
  }
}

// Scripts in which a mark over a letter may be left out in typing. In others marks are vowels.
bool HasOptionalMarks(char32_t c) {
  return PlainDigit(c) != c || (c >= 0xC0 && c < 0x250) || (c >= 0x370 && c < 0x400) ||
         (c >= 0x1E00 && c < 0x2000) || c == 0x401 || c == 0x451;
}

// `letter`, the character `c` in UTF-8, without its marks, where they may be left out.
std::string WithoutMarks(char32_t c, std::string letter, const icu::Normalizer2& nfd) {
  if (const std::string_view pair = PlainPair(c); !pair.empty()) return std::string(pair);
  if (!HasOptionalMarks(c)) return letter;
  icu::UnicodeString parts;
  if (PlainLetter(c) != c) {
    parts = static_cast<UChar32>(PlainLetter(c));
  } else if (!nfd.getDecomposition(static_cast<UChar32>(c), parts)) {
    parts = static_cast<UChar32>(c);
  }
  std::string plain;
  for (int32_t k = 0; k < parts.length(); k = parts.moveIndex32(k, 1)) {
    const UChar32 part = parts.char32At(k);
    if (u_charType(part) != U_NON_SPACING_MARK) icu::UnicodeString(part).toUTF8String(plain);
  }
  return plain;
}

}  // namespace

std::vector<std::string> PlainForms(std::string_view surface) {
  if (IsAsciiText(surface)) return {};
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* nfd = icu::Normalizer2::getNFDInstance(status);
  if (U_FAILURE(status)) return {};
  std::string plain;
  std::string written;
  std::string withoutSharpS;  // other letters as they are: "GRÖSSE", and so all of Switzerland
  for (size_t i = 0; i < surface.size();) {
    size_t length = 0;
    const char32_t c = DecodeCharacter(surface, i, length);
    const std::string letter(surface.substr(i, length));
    i += length;
    withoutSharpS += c == 0x00DF || c == 0x1E9E ? "ss" : letter;
    const std::string bare = WithoutMarks(c, letter, *nfd);
    const std::string_view spelled = WrittenOut(c);
    plain += bare;
    written += spelled.empty() ? bare : spelled;
  }
  const std::string lower = LowerUtf8Copy(surface);
  std::vector<std::string> forms;
  for (const std::string& form :
       {LowerUtf8Copy(plain), LowerUtf8Copy(written), LowerUtf8Copy(withoutSharpS)}) {
    if (form != lower && std::ranges::find(forms, form) == forms.end()) forms.push_back(form);
  }
  return forms;
}

}  // namespace vela::indexer
