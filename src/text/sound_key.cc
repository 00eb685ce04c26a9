#include "text/sound_key.h"

#include <cstddef>

#include "text/ascii.h"

namespace vela {

namespace {

// More letters cannot change a key: each group of letters that says nothing is short.
constexpr size_t kLetterLimit = 2085;

bool IsOneOf(char c, std::string_view letters) {
  return c != '\0' && letters.find(c) != letters.npos;
}

bool IsVowel(char c) { return IsOneOf(c, "AEIOU"); }
bool IsFrontVowel(char c) { return IsOneOf(c, "EIY"); }

// The letters of a word, and what one of them sounds like among its neighbours.
struct Letters {
  std::string_view text;

  char At(size_t i) const { return i < text.size() ? text[i] : '\0'; }
  char Before(size_t i) const { return i > 0 ? text[i - 1] : '\0'; }
  bool Follows(size_t i, std::string_view letters) const {
    return text.substr(i + 1).starts_with(letters);
  }

  std::string_view SoundOf(size_t i) const;

 private:
  std::string_view SoundOfC(size_t i) const;
  std::string_view SoundOfG(size_t i) const;
  std::string_view SoundOfT(size_t i) const;
};

std::string_view Letters::SoundOfC(size_t i) const {
  if (Follows(i, "IA")) return "X";
  if (IsFrontVowel(At(i + 1))) return Before(i) == 'S' ? "" : "S";
  if (At(i + 1) == 'H') return Before(i) == 'S' ? "K" : "X";
  return "K";
}

std::string_view Letters::SoundOfG(size_t i) const {
  if (At(i + 1) == 'H' && At(i + 2) != '\0' && !IsVowel(At(i + 2))) return "";
  const std::string_view rest = text.substr(i);
  if (rest == "GN" || rest == "GNED") return "";
  if (!IsFrontVowel(At(i + 1))) return "K";
  if (Before(i) == 'D') return "";
  return Before(i) == 'G' ? "K" : "J";
}

std::string_view Letters::SoundOfT(size_t i) const {
  if (Follows(i, "IA") || Follows(i, "IO")) return "X";
  if (At(i + 1) == 'H') return "0";
  return Follows(i, "CH") ? "" : "T";
}

std::string_view Letters::SoundOf(size_t i) const {
  const std::string_view itself = text.substr(i, 1);
  switch (text[i]) {
    case 'A':
    case 'E':
    case 'I':
    case 'O':
    case 'U':
      return i == 0 ? itself : "";
    case 'B':
      return Before(i) == 'M' && i + 1 == text.size() ? "" : "B";
    case 'C':
      return SoundOfC(i);
    case 'D':
      return At(i + 1) == 'G' && IsFrontVowel(At(i + 2)) ? "J" : "T";
    case 'G':
      return SoundOfG(i);
    case 'H':
      return !IsOneOf(Before(i), "CSPTG") && IsVowel(At(i + 1)) ? "H" : "";
    case 'K':
      return Before(i) == 'C' ? "" : "K";
    case 'P':
      return At(i + 1) == 'H' ? "F" : "P";
    case 'Q':
      return "K";
    case 'S':
      return At(i + 1) == 'H' || Follows(i, "IO") || Follows(i, "IA") ? "X" : "S";
    case 'T':
      return SoundOfT(i);
    case 'V':
      return "F";
    case 'W':
    case 'Y':
      return IsVowel(At(i + 1)) ? itself : "";
    case 'X':
      return "KS";
    case 'Z':
      return "S";
    default:  // F, J, L, M, N, R
      return itself;
  }
}

}  // namespace

SoundKey MakeSoundKey(std::string_view word) {
  FixedText<kLetterLimit + 1> upper;
  size_t count = 0;
  for (char c : word) {
    if (IsAlpha(c) && count < kLetterLimit) upper.bytes[count++] = ToUpperAscii(c);
  }
  // Letters at the start of a word that are not heard.
  char* start = upper.bytes;
  std::string_view text(start, count);
  for (std::string_view silent : {"AE", "GN", "KN", "PN", "WR"}) {
    if (text.starts_with(silent)) {
      text.remove_prefix(1);
      break;
    }
  }
  if (text.data() == start && text.starts_with('X')) start[0] = 'S';
  if (text.data() == start && text.starts_with("WH")) {
    start[1] = 'W';
    text.remove_prefix(1);
  }
  SoundKey key;
  const Letters letters{text};
  for (size_t i = 0; i < text.size() && View(key).size() < kSoundKeyLength; ++i) {
    if (letters.Before(i) == text[i] && text[i] != 'C') continue;
    Append(key, letters.SoundOf(i));
  }
  return key;
}

}  // namespace vela
