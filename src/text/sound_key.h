// sound_key.h: what a word sounds like in English. The indexer writes the keys of its vocabulary
// into the spelling file and the search looks up the keys of unknown words, through this code.
#pragma once

#include <string_view>

#include "text/fixed_text.h"

namespace vela {

inline constexpr size_t kSoundKeyLength = 6;
using SoundKey = FixedText<kSoundKeyLength + 1>;

// The key of a word, from its ASCII letters; empty when it has none.
SoundKey MakeSoundKey(std::string_view word);

}  // namespace vela
