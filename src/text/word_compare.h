// word_compare.h: how two words compare under the settings of the index.
#pragma once

#include <string_view>

namespace vela {

struct TextMode {
  bool foldCase = false;  // `ToLowerSearchWords` is not 0: both sides are lower-cased first
  bool utf8 = false;      // `UseUTF8` is 1
};

// Negative, 0 or positive, by bytes (unsigned), after lower-casing where the mode asks for it.
// Needs no memory of its own: the words are lower-cased as they are read.
int WordCompare(TextMode mode, std::string_view a, std::string_view b);

// The same over the first `length` bytes of each word; a character cut there is not lower-cased.
int WordCompareN(TextMode mode, std::string_view a, std::string_view b, size_t length);

// The same where `a` is lower-case already.
int WordCompareLowered(TextMode mode, std::string_view a, std::string_view b);

}  // namespace vela
