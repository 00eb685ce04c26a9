#include "indexer/extract/character_references.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "indexer/words/encode_character.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

struct NamedReference {
  std::string_view name;  // with its semicolon, if it needs one
  std::string_view text;
};

constexpr NamedReference kNamed[] = {
#define VELA_REFERENCE(name, text) {name, text},
#include "indexer/extract/named_references.inc"
#undef VELA_REFERENCE
};
static_assert(std::ranges::is_sorted(kNamed, {}, &NamedReference::name));

// Of the names, with and without a semicolon.
constexpr size_t kLongestName = 32;
constexpr size_t kLongestUnended = 6;

// What the numbers 0x80 to 0x9F stand for: they are taken as windows-1252, where that has them.
constexpr char32_t kWindows1252[] = {
    0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021, 0x2C6,  0x2030, 0x160,
    0x2039, 0x152,  0x8D,   0x17D,  0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178,
};
constexpr char32_t kReplacement = 0xFFFD;

const NamedReference* FindNamed(std::string_view name) {
  const auto* found = std::ranges::lower_bound(kNamed, name, {}, &NamedReference::name);
  return found != std::end(kNamed) && found->name == name ? found : nullptr;
}

void SetCharacter(char32_t c, CharacterReference& reference) {
  reference.textLength += EncodeCharacter(c, reference.text + reference.textLength);
}

// The value of a digit; 16 and above when it is none.
uint32_t DigitValue(char c) {
  if (IsDigit(c)) return static_cast<uint32_t>(c - '0');
  const char lower = ToLowerAscii(c);
  return IsLower(lower) ? static_cast<uint32_t>(lower - 'a') + 10 : 99;
}

// `markup` begins with "&#".
CharacterReference ReadNumeric(std::string_view markup) {
  CharacterReference reference;
  size_t at = 2;
  const bool hex = at < markup.size() && ToLowerAscii(markup[at]) == 'x';
  if (hex) ++at;
  const uint32_t base = hex ? 16 : 10;
  constexpr uint32_t kAboveAll = 0x110000;
  const size_t digits = at;
  uint32_t value = 0;
  for (; at < markup.size() && DigitValue(markup[at]) < base; ++at) {
    value = std::min(value * base + DigitValue(markup[at]), kAboveAll);
  }
  if (at == digits) return reference;
  if (at < markup.size() && markup[at] == ';') ++at;
  reference.length = at;
  char32_t c = value;
  if (value == 0 || value >= kAboveAll || (value >= 0xD800 && value <= 0xDFFF)) {
    c = kReplacement;
  } else if (value >= 0x80 && value <= 0x9F) {
    c = kWindows1252[value - 0x80];
  }
  SetCharacter(c, reference);
  return reference;
}

CharacterReference Found(const NamedReference& named) {
  CharacterReference reference;
  reference.length = named.name.size() + 1;
  reference.textLength = named.text.copy(reference.text, sizeof reference.text);
  return reference;
}

}  // namespace

CharacterReference ReadCharacterReference(std::string_view markup, bool inAttribute) {
  if (markup.size() > 1 && markup[1] == '#') return ReadNumeric(markup);
  const std::string_view rest = markup.substr(1, kLongestName);
  size_t length = 0;
  while (length < rest.size() && IsAlphaNumeric(rest[length])) ++length;
  if (length < rest.size() && rest[length] == ';') {
    if (const NamedReference* named = FindNamed(rest.substr(0, length + 1))) return Found(*named);
  }
  // The longest that needs no semicolon: names hold only letters and digits before it.
  for (size_t cut = std::min(length, kLongestUnended); cut > 1; --cut) {
    const NamedReference* named = FindNamed(rest.substr(0, cut));
    if (named == nullptr) continue;
    const bool goesOn = cut < rest.size() && (rest[cut] == '=' || IsAlphaNumeric(rest[cut]));
    if (inAttribute && goesOn) break;
    return Found(*named);
  }
  return {};
}

void AppendResolved(std::string_view markup, bool inAttribute, std::string& text) {
  size_t at = 0;
  while (at < markup.size()) {
    const size_t ampersand = std::min(markup.find('&', at), markup.size());
    text.append(markup, at, ampersand - at);
    at = ampersand;
    if (at == markup.size()) break;
    const CharacterReference reference = ReadCharacterReference(markup.substr(at), inAttribute);
    if (reference.length == 0) {
      text += '&';
      ++at;
    } else {
      text.append(reference.text, reference.textLength);
      at += reference.length;
    }
  }
}

}  // namespace vela::indexer
