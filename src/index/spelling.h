// spelling.h: the reader of the table behind spelling suggestions (format/spelling.h). A line
// without a number is no entry.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "format/spelling.h"
#include "index/load_status.h"
#include "index/lookup_file.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/sound_key.h"

namespace vela {

struct SpellingEntry {
  SoundKey key;
  std::array<int32_t, kSpellingWordLimit> words = {};  // kNoSpellingWord behind the last
};

// The open file; it is read when a term is looked for, and as far as that takes.
struct SpellingTable {
  FileImage file;
  size_t lineLimit = 0;                // bytes of a line that are read in one piece
  int64_t most = 0;                    // entries in use: NumSpellings + 1
  const LookupFile* lookup = nullptr;  // null: does not belong to this file
  bool isLoaded = false;
};

// Opens the file; `lookup` must outlive the table. kOk, kCannotOpen or kNoMemory.
[[nodiscard]] LoadStatus LoadSpelling(SpellingTable& table, const IndexDirectory& directory,
                                      const Settings& settings, const LookupFile& lookup);

// Gives the entries in use one by one, in the order of the file.
class SpellingReader {
 public:
  // From the first entry on.
  explicit SpellingReader(const SpellingTable& table);
  // In a file that is sorted, and known to be, entries below `key` may be passed over.
  SpellingReader(const SpellingTable& table, std::string_view key);

  // The next entry; false when there is none left.
  bool Next(SpellingEntry& entry);

 private:
  LineReader lines_;
  size_t lineLimit_;
  int64_t left_;
};

}  // namespace vela
