// spelling.h: the reader of the table behind spelling suggestions (format/spelling.h). A line
// without a number is no entry.
#pragma once

#include <array>
#include <cstdint>

#include "format/spelling.h"
#include "index/load_status.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/owned_array.h"
#include "text/sound_key.h"

namespace vela {

struct SpellingEntry {
  SoundKey key;
  std::array<int32_t, kSpellingWordLimit> words = {};  // kNoSpellingWord behind the last
};

struct SpellingTable {
  OwnedArray<SpellingEntry> entries;
  int32_t count = 0;
  bool isLoaded = false;
};

// Loads at most NumSpellings + 1 entries. kOk, kCannotOpen or kNoMemory.
[[nodiscard]] LoadStatus LoadSpelling(SpellingTable& table, const IndexDirectory& directory,
                                      const Settings& settings);

}  // namespace vela
