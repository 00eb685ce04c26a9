// spelling.h: the table behind spelling suggestions (`vela_spelling.vdat`).
//
// A text file sorted by key, one entry a line: key, then one to three dictionary word numbers (0:
// none), separated by blanks. Of a key 6 characters are kept. A line is read in pieces of at most
// MaxKeyWordLineLen - 1 bytes; one without a number is no entry.
#pragma once

#include <array>
#include <cstdint>

#include "index/load_status.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/owned_array.h"
#include "text/sound_key.h"

namespace vela {

inline constexpr char kSpellingFileName[] = "vela_spelling.vdat";

struct SpellingEntry {
  SoundKey key;
  std::array<int32_t, 3> words = {};  // first, second, third
};

struct SpellingTable {
  OwnedArray<SpellingEntry> entries;
  int32_t count = 0;
  bool isLoaded = false;
};

// Loads at most NumSpellings + 1 entries. kOk, kCannotOpen or kNoMemory.
[[nodiscard]] LoadStatus LoadSpelling(SpellingTable& table, const IndexDirectory& directory,
                                      const Settings& settings);

// The size of the line buffer for the text index files: at least 2 bytes, its terminator included.
size_t KeyWordLineSize(const Settings& settings);

}  // namespace vela
