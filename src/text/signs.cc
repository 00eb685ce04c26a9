#include "text/signs.h"

#include <algorithm>
#include <iterator>

#include "text/ascii.h"
#include "text/utf8.h"

namespace vela {

namespace {

constexpr SignRange kSignRanges[] = {
#include "text/sign_table.inc"
};

constexpr char32_t kTextVariant = 0xFE0E;
constexpr char32_t kEmojiVariant = 0xFE0F;
constexpr char32_t kKeyCap = 0x20E3;
constexpr char32_t kJoiner = 0x200D;
constexpr std::string_view kJoinerText = "\u200D";
// Bytes of a picture made of several characters: a family of four with skin tones has 41.
constexpr size_t kPictureBytesLimit = 64;

bool IsSkinTone(char32_t c) { return c >= 0x1F3FB && c <= 0x1F3FF; }
bool IsFlagHalf(char32_t c) { return c >= 0x1F1E6 && c <= 0x1F1FF; }
bool IsTag(char32_t c) { return c >= 0xE0020 && c <= 0xE007F; }  // spells the flag of a region

CharacterKind KindOfAscii(char c) {
  if (IsAlphaNumeric(c)) return CharacterKind::kWord;
  return c == ' ' || IsControl(c) ? CharacterKind::kBlank : CharacterKind::kSymbol;
}

}  // namespace

std::span<const SignRange> SignRanges() { return kSignRanges; }

CharacterKind KindOf(char32_t c) {
  if (c < 0x80) return KindOfAscii(static_cast<char>(c));
  const auto* range =
      std::upper_bound(std::begin(kSignRanges), std::end(kSignRanges), c,
                       [](char32_t value, const SignRange& r) { return value < r.first; });
  if (range == std::begin(kSignRanges)) return CharacterKind::kWord;
  --range;
  return c - range->first <= range->more ? range->kind : CharacterKind::kWord;
}

bool GoesWithSign(std::string_view before, char32_t c) {
  if (before.empty() || before.size() > kPictureBytesLimit) return false;
  size_t length = 0;
  const char32_t first = DecodeCharacter(before, 0, length);
  if (first < 0x80) return false;
  if (c == kTextVariant || c == kEmojiVariant || c == kKeyCap) return true;
  if (c == kJoiner || IsTag(c) || IsSkinTone(c)) return true;
  if (IsFlagHalf(c)) return IsFlagHalf(first) && length == before.size();
  if (!before.ends_with(kJoinerText)) return false;
  const CharacterKind kind = KindOf(c);
  return kind == CharacterKind::kSymbol || kind == CharacterKind::kPicture;
}

}  // namespace vela
