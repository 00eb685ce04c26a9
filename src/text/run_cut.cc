#include "text/run_cut.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "text/lower.h"

namespace vela {

namespace {

// What a character is to a piece.
enum class RunPart : uint8_t {
  kNone,
  kLetter,  // begins a piece
  kMark,    // goes with the character before it
  kStack,   // a mark that takes the letter behind it along
};

struct RunRange {
  char32_t first;
  char32_t last;
  RunPart part;
};

using enum RunPart;

// Ascending. Digits and signs that some other script shares are not among them.
constexpr RunRange kRanges[] = {
    // Thai
    {0x0E01, 0x0E30, kLetter},
    {0x0E31, 0x0E31, kMark},
    {0x0E32, 0x0E33, kLetter},
    {0x0E34, 0x0E3A, kMark},
    {0x0E40, 0x0E46, kLetter},
    {0x0E47, 0x0E4E, kMark},
    {0x0E50, 0x0E59, kLetter},
    // Lao
    {0x0E81, 0x0EB0, kLetter},
    {0x0EB1, 0x0EB1, kMark},
    {0x0EB2, 0x0EB3, kLetter},
    {0x0EB4, 0x0EBC, kMark},
    {0x0EBD, 0x0EC6, kLetter},
    {0x0EC8, 0x0ECE, kMark},
    {0x0ED0, 0x0EDF, kLetter},
    // Burmese
    {0x1000, 0x102A, kLetter},
    {0x102B, 0x1038, kMark},
    {0x1039, 0x1039, kStack},
    {0x103A, 0x103E, kMark},
    {0x103F, 0x1049, kLetter},
    {0x1050, 0x1055, kLetter},
    {0x1056, 0x1059, kMark},
    {0x105A, 0x105D, kLetter},
    {0x105E, 0x1060, kMark},
    {0x1061, 0x1061, kLetter},
    {0x1062, 0x1064, kMark},
    {0x1065, 0x1066, kLetter},
    {0x1067, 0x106D, kMark},
    {0x106E, 0x1070, kLetter},
    {0x1071, 0x1074, kMark},
    {0x1075, 0x1081, kLetter},
    {0x1082, 0x108D, kMark},
    {0x108E, 0x108E, kLetter},
    {0x108F, 0x108F, kMark},
    {0x1090, 0x1099, kLetter},
    {0x109A, 0x109D, kMark},
    // Khmer
    {0x1780, 0x17B3, kLetter},
    {0x17B4, 0x17D1, kMark},
    {0x17D2, 0x17D2, kStack},
    {0x17D3, 0x17D3, kMark},
    {0x17D7, 0x17D7, kLetter},
    {0x17DC, 0x17DC, kLetter},
    {0x17DD, 0x17DD, kMark},
    {0x17E0, 0x17E9, kLetter},
    // Chinese and Japanese
    {0x2E80, 0x2FD5, kLetter},
    {0x3005, 0x3007, kLetter},
    {0x3021, 0x3029, kLetter},
    {0x3031, 0x3035, kLetter},
    {0x3038, 0x303C, kLetter},
    {0x3041, 0x3096, kLetter},
    {0x3099, 0x309A, kMark},
    {0x309D, 0x309F, kLetter},
    {0x30A1, 0x30FA, kLetter},
    {0x30FC, 0x30FF, kLetter},
    {0x3105, 0x312F, kLetter},
    {0x31A0, 0x31BF, kLetter},
    {0x31F0, 0x31FF, kLetter},
    {0x3400, 0x4DBF, kLetter},
    {0x4E00, 0x9FFF, kLetter},
    {0xF900, 0xFAD9, kLetter},
    {0xFF66, 0xFF9D, kLetter},
    {0xFF9E, 0xFF9F, kMark},
    {0x1AFF0, 0x1AFFE, kLetter},
    {0x1B000, 0x1B167, kLetter},
    {0x20000, 0x3FFFD, kLetter},
    {0xE0100, 0xE01EF, kMark},
};
static_assert(std::is_sorted(std::begin(kRanges), std::end(kRanges),
                             [](const RunRange& a, const RunRange& b) {
                               return a.last < b.first;
                             }));

// No script without blanks has characters of fewer bytes.
constexpr unsigned char kFirstLead = 0xE0;
// Of one piece. Four marks over a letter are the most that are written.
constexpr size_t kPieceCharacters = 12;

constexpr char32_t kFirstSelector = 0xE0100;
constexpr char32_t kVoiced = 0x3099;  // the mark of "ga" over "ka"; kVoiced + 1 that of "pa"
constexpr char32_t kHalfVoiced = 0xFF9E;
constexpr char32_t kFirstHalfKana = 0xFF66;
constexpr char32_t kFullKana[] = {
    0x30F2, 0x30A1, 0x30A3, 0x30A5, 0x30A7, 0x30A9, 0x30E3, 0x30E5, 0x30E7, 0x30C3, 0x30FC, 0x30A2,
    0x30A4, 0x30A6, 0x30A8, 0x30AA, 0x30AB, 0x30AD, 0x30AF, 0x30B1, 0x30B3, 0x30B5, 0x30B7, 0x30B9,
    0x30BB, 0x30BD, 0x30BF, 0x30C1, 0x30C4, 0x30C6, 0x30C8, 0x30CA, 0x30CB, 0x30CC, 0x30CD, 0x30CE,
    0x30CF, 0x30D2, 0x30D5, 0x30D8, 0x30DB, 0x30DE, 0x30DF, 0x30E0, 0x30E1, 0x30E2, 0x30E4, 0x30E6,
    0x30E8, 0x30E9, 0x30EA, 0x30EB, 0x30EC, 0x30ED, 0x30EF, 0x30F3};
static_assert(std::size(kFullKana) == 0xFF9E - kFirstHalfKana);

// The character of at least three bytes at the start of the text, and its length; 0 for any other.
char32_t LongCharacter(std::string_view text, size_t& length) {
  const auto byte = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
  if (text.empty() || byte(0) < kFirstLead) return 0;
  length = Utf8Length(byte(0));
  if (length < 3 || length > text.size()) return 0;
  char32_t c = byte(0) & (length == 3 ? 0x0FU : 0x07U);
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return 0;
    c = c << 6 | (byte(i) & 0x3FU);
  }
  return c;
}

RunPart PartOf(char32_t c) {
  const auto* found = std::ranges::lower_bound(kRanges, c, {}, &RunRange::last);
  return found != std::end(kRanges) && found->first <= c ? found->part : kNone;
}

// Puts a character of three or four bytes there; returns how many.
size_t PutLong(char32_t c, char* out) {
  const auto put = [&](size_t i, char32_t value) { out[i] = static_cast<char>(value); };
  const size_t length = c < 0x10000 ? 3 : 4;
  put(0, length == 3 ? 0xE0U | c >> 12 : 0xF0U | c >> 18);
  for (size_t i = 1; i < length; ++i) put(i, 0x80U | (c >> 6 * (length - 1 - i) & 0x3FU));
  return length;
}

// The kana with the voicing mark, 0 where there is none. Unvoiced, voiced and half-voiced forms
// follow one another.
char32_t Voiced(char32_t kana, bool half) {
  const char32_t katakana = kana < 0x30A0 ? kana + 0x60 : kana;
  const bool isHa = katakana >= 0x30CF && katakana <= 0x30DB && (katakana - 0x30CF) % 3 == 0;
  if (half) return isHa ? kana + 2 : 0;
  const bool isKaToTi = katakana >= 0x30AB && katakana <= 0x30C1 && katakana % 2 != 0;
  const bool isTuToTo = katakana >= 0x30C4 && katakana <= 0x30C8 && katakana % 2 == 0;
  if (isHa || isKaToTi || isTuToTo) return kana + 1;
  return katakana == 0x30A6 ? kana + 0x4E : 0;
}

}  // namespace

size_t RunPieceLength(std::string_view text) {
  size_t at = 0;
  RunPart before = kNone;
  for (size_t count = 0; count < kPieceCharacters; ++count) {
    size_t length = 0;
    const char32_t c = LongCharacter(text.substr(at), length);
    const RunPart part = c == 0 ? kNone : PartOf(c);
    if (part == kNone || (at == 0 && c >= kFirstSelector)) break;
    if (at != 0 && part == kLetter && before != kStack) break;
    at += length;
    before = part;
  }
  return at;
}

bool HasRunPiece(std::string_view text) {
  for (size_t i = 0; i < text.size(); ++i) {
    if (static_cast<unsigned char>(text[i]) < kFirstLead) continue;
    if (RunPieceLength(text.substr(i)) != 0) return true;
  }
  return false;
}

size_t FoldRunPiece(char* piece, size_t length) {
  size_t written = 0;
  size_t last = 0;  // where the character written last begins
  char32_t before = 0;
  size_t bytes = 0;
  for (size_t at = 0; at < length; at += bytes) {
    char32_t c = LongCharacter({piece + at, length - at}, bytes);
    if (c == 0) return length;
    if (c >= kFirstSelector) continue;
    if (c >= kFirstHalfKana && c < kHalfVoiced) c = kFullKana[c - kFirstHalfKana];
    const char32_t mark = c >= kHalfVoiced && c <= kHalfVoiced + 1 ? c - kHalfVoiced + kVoiced : c;
    const bool isVoicing = mark == kVoiced || mark == kVoiced + 1;
    const char32_t voiced = isVoicing ? Voiced(before, mark != kVoiced) : 0;
    if (voiced != 0) {
      written = last;
      c = voiced;
    }
    before = c;
    last = written;
    written += PutLong(c, piece + written);
  }
  return written;
}

}  // namespace vela
