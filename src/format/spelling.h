// spelling.h: `vela_spelling.vdat`, which dictionary words sound alike.
//
// A text file sorted by the bytes of its keys (keyword_line.h):
//
//   key word [word [word]]    the sound key (text/sound_key.h), and the numbers of the dictionary
//                             words that have it, the most frequent first
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela {

inline constexpr char kSpellingFileName[] = "vela_spelling.vdat";

inline constexpr size_t kSpellingWordLimit = 3;  // words of a key
inline constexpr int32_t kNoSpellingWord = 0;    // the number where there is no further word

}  // namespace vela
