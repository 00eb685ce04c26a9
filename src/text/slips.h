// slips.h: how far a word as it was typed lies from one that may be meant.
//
// Words are compared letter by letter: by character in UTF-8, by byte otherwise.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vela {

// Longer words are nobody's slip.
inline constexpr size_t kWordLettersLimit = 32;

struct WordLetters {
  std::array<char32_t, kWordLettersLimit> letters = {};
  size_t count = 0;
};

// The letters of the word. False, and no letters, when there are more than the limit or the text is
// not well-formed UTF-8.
[[nodiscard]] bool ReadLetters(std::string_view word, bool utf8, WordLetters& letters);

// Which letters the word has: a bit for each of a to z, six for all others together. A slip changes
// two bits at most.
uint32_t LetterSetOf(const WordLetters& letters);

// The least number of letters to leave out, to put in or to put in the place of another, and of
// neighbours to swap, that makes one word of the other; nothing is changed twice. Made once for the
// word typed, asked for many others.
class SlipCounter {
 public:
  explicit SlipCounter(const WordLetters& typed);
  uint32_t CountTo(const WordLetters& word) const;

 private:
  uint32_t PlacesOf(char32_t letter) const;

  const WordLetters& typed_;
  std::array<uint32_t, 128> places_ = {};  // by ASCII letter: a bit for each place that has it
};

// The same with slips weighed by how likely fingers make them: a swap, a letter doubled or one of
// two left out, a neighbour on the keyboard and a vowel for another are cheaper than the rest, and
// what changes the first letter is dearer.
int32_t SlipCost(const WordLetters& typed, const WordLetters& meant);

}  // namespace vela
