// settings_writer.h: settings.vdat, read by src/settings/settings_file.h.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "indexer/dictionary_writer.h"

namespace vela::indexer {

struct IndexFacts {
  DictionarySizes dictionary;
  uint64_t pages = 0;
  uint64_t pageInfoBytes = 0;
  size_t tokenBytes = 0;  // DictIDLen
};

// Checks the content of a language file, lines `STR_KEY = "text"` for each of the 49 keys, and
// returns those lines in the order of the keys. Throws IndexError naming what is missing; `name`
// is how the file is called in the message.
std::string CheckedLanguage(std::string_view content, const std::string& name);

// Writes every setting that a good results page needs. `language` comes from CheckedLanguage.
// Returns the size of the file. The search program rejects numbers above 2147483647: IndexError.
uint64_t WriteSettings(const std::filesystem::path& path, const IndexFacts& facts,
                       const std::string& language);

}  // namespace vela::indexer
