#include "text/slips.h"

#include <algorithm>

#include "text/ascii.h"
#include "text/lower.h"

namespace vela {

namespace {

constexpr int32_t kSwapCost = 9;
constexpr int32_t kDoubledCost = 8;   // a letter too many or too few beside an equal one
constexpr int32_t kLeftOutCost = 11;  // a letter that is missing
constexpr int32_t kTouchedCost =
    14;                             // a letter too many whose key lies beside that of one beside it
constexpr int32_t kPutInCost = 18;  // any other letter too many
constexpr int32_t kNeighbourCost = 12;  // a key beside the right one
constexpr int32_t kVowelCost = 11;
constexpr int32_t kReplacedCost = 19;     // any other letter
constexpr int32_t kFirstLetterCost = 12;  // added to what changes the first letter
constexpr int32_t kFirstSwapCost = 2;     // added to a swap of the first two

constexpr char32_t kLastAscii = 0x7F;
constexpr uint32_t kOtherLetters = 'z' - 'a' + 1;  // the first bit of those
constexpr uint32_t kOtherLetterBits = 32 - kOtherLetters;

bool IsVowel(char32_t letter) {
  return letter == 'a' || letter == 'e' || letter == 'i' || letter == 'o' || letter == 'u' ||
         letter == 'y';
}

// Keyboards in use differ in few letters, none of which is worth a table.
constexpr std::string_view kKeyRows[] = {"qwertyuiop", "asdfghjkl", "zxcvbnm"};

bool AreNeighbours(char32_t a, char32_t b) {
  if (a > kLastAscii || b > kLastAscii) return false;
  for (size_t row = 0; row < std::size(kKeyRows); ++row) {
    const size_t at = kKeyRows[row].find(static_cast<char>(a));
    if (at == std::string_view::npos) continue;
    for (size_t other = row == 0 ? 0 : row - 1; other <= row + 1 && other < std::size(kKeyRows);
         ++other) {
      const size_t near = kKeyRows[other].find(static_cast<char>(b));
      if (near == std::string_view::npos) continue;
      // A row stands half a key to the right of the one above it.
      const size_t left = other > row ? at : at + 1;
      return other == row ? near + 1 == at || at + 1 == near : near + 1 == left || near == left;
    }
  }
  return false;
}

int32_t ReplacementCost(char32_t typed, char32_t meant) {
  if (typed == meant) return 0;
  if (IsVowel(typed) && IsVowel(meant)) return kVowelCost;
  return AreNeighbours(typed, meant) ? kNeighbourCost : kReplacedCost;
}

// Whether the letter at `i` is equal to one beside it.
bool IsDoubled(const WordLetters& word, size_t i) {
  const auto& letters = word.letters;
  return (i > 0 && letters[i] == letters[i - 1]) ||
         (i + 1 < word.count && letters[i] == letters[i + 1]);
}

int32_t PutInCost(const WordLetters& typed, size_t i) {
  if (IsDoubled(typed, i)) return kDoubledCost;
  const auto& letters = typed.letters;
  const bool isTouched = (i > 0 && AreNeighbours(letters[i], letters[i - 1])) ||
                         (i + 1 < typed.count && AreNeighbours(letters[i], letters[i + 1]));
  return isTouched ? kTouchedCost : kPutInCost;
}

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The character at the start of `text`, which is not empty. False when it is malformed.
bool TakeCharacter(std::string_view& text, char32_t& character) {
  const auto lead = static_cast<unsigned char>(text[0]);
  const size_t length = Utf8Length(lead);
  if (length == 1) {
    if (lead > kLastAscii) return false;
    character = lead;
    text.remove_prefix(1);
    return true;
  }
  if (length > text.size()) return false;
  character = lead & (0x7FU >> length);
  for (size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text[i])) return false;
    character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
  }
  text.remove_prefix(length);
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};  // by length
  const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
  return character >= kLeast[length] && character <= 0x10FFFF && !isSurrogate;
}

}  // namespace

bool ReadLetters(std::string_view word, bool utf8, WordLetters& letters) {
  letters.count = 0;
  size_t count = 0;
  while (!word.empty()) {
    if (count == kWordLettersLimit) return false;
    char32_t character = static_cast<unsigned char>(word[0]);
    if (!utf8) {
      word.remove_prefix(1);
    } else if (!TakeCharacter(word, character)) {
      return false;
    }
    letters.letters[count++] = character;
  }
  letters.count = count;
  return true;
}

uint32_t LetterSetOf(const WordLetters& letters) {
  uint32_t set = 0;
  for (size_t i = 0; i < letters.count; ++i) {
    const char32_t letter = letters.letters[i];
    const bool isBasic = letter >= 'a' && letter <= 'z';
    set |= 1U << (isBasic ? letter - 'a' : kOtherLetters + letter % kOtherLetterBits);
  }
  return set;
}

SlipCounter::SlipCounter(const WordLetters& typed) : typed_(typed) {
  for (size_t i = 0; i < typed.count; ++i) {
    if (typed.letters[i] <= kLastAscii) places_[typed.letters[i]] |= 1U << i;
  }
}

uint32_t SlipCounter::PlacesOf(char32_t letter) const {
  if (letter <= kLastAscii) return places_[letter];
  uint32_t places = 0;
  for (size_t i = 0; i < typed_.count; ++i) {
    if (typed_.letters[i] == letter) places |= 1U << i;
  }
  return places;
}

// A column of the table of distances is kept as the bits by which neighbours in it differ
// (H. Hyyrö, A bit-vector algorithm for computing Levenshtein and Damerau edit distances, 2003).
uint32_t SlipCounter::CountTo(const WordLetters& word) const {
  if (typed_.count == 0) return static_cast<uint32_t>(word.count);
  auto count = static_cast<uint32_t>(typed_.count);
  const uint32_t last = 1U << (typed_.count - 1);
  uint32_t rises = ~0U;
  uint32_t falls = 0;
  uint32_t equal = 0;
  uint32_t placesBefore = 0;
  for (size_t i = 0; i < word.count; ++i) {
    const uint32_t places = PlacesOf(word.letters[i]);
    const uint32_t swapped = ((~equal & places) << 1) & placesBefore;
    equal = (((places & rises) + rises) ^ rises) | places | falls | swapped;
    uint32_t rowRises = falls | ~(equal | rises);
    uint32_t rowFalls = equal & rises;
    if ((rowRises & last) != 0) ++count;
    if ((rowFalls & last) != 0) --count;
    rowRises = rowRises << 1 | 1;
    rowFalls <<= 1;
    rises = rowFalls | ~(equal | rowRises);
    falls = rowRises & equal;
    placesBefore = places;
  }
  return count;
}

int32_t SlipCost(const WordLetters& typed, const WordLetters& meant) {
  // Three rows of the table: those of the letter typed and of the two before it.
  using Row = std::array<int32_t, kWordLettersLimit + 1>;
  Row rows[3] = {};
  const auto& t = typed.letters;
  const auto& m = meant.letters;
  const auto first = [](size_t i) { return i == 0 ? kFirstLetterCost : 0; };
  for (size_t j = 0; j < meant.count; ++j) {
    rows[0][j + 1] = rows[0][j] + (IsDoubled(meant, j) ? kDoubledCost : kLeftOutCost) + first(j);
  }
  for (size_t i = 0; i < typed.count; ++i) {
    const Row& before = rows[i % 3];
    Row& row = rows[(i + 1) % 3];
    const int32_t putIn = PutInCost(typed, i);
    row[0] = before[0] + putIn + first(i);
    for (size_t j = 0; j < meant.count; ++j) {
      const int32_t leftOut = IsDoubled(meant, j) ? kDoubledCost : kLeftOutCost;
      int32_t cost = before[j] + ReplacementCost(t[i], m[j]) +
                     (t[i] == m[j] || i != 0 || j != 0 ? 0 : kFirstLetterCost);
      cost = std::min(cost, before[j + 1] + putIn + first(i));
      cost = std::min(cost, row[j] + leftOut + first(j));
      if (i > 0 && j > 0 && t[i] == m[j - 1] && t[i - 1] == m[j] && t[i] != t[i - 1]) {
        const int32_t swapped =
            rows[(i + 2) % 3][j - 1] + kSwapCost + (i == 1 ? kFirstSwapCost : 0);
        cost = std::min(cost, swapped);
      }
      row[j + 1] = cost;
    }
  }
  return rows[typed.count % 3][meant.count];
}

}  // namespace vela
