// settings_writer.h: the settings file (format/settings_file.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "indexer/collect/sign_entries.h"
#include "indexer/config/site_config.h"
#include "indexer/words/index_charset.h"
#include "indexer/write/dictionary_writer.h"

namespace vela::indexer {

struct IndexFacts {
  DictionarySizes dictionary;
  ReservedNumbers reserved;
  uint64_t pages = 0;
  uint64_t pageInfoBytes = 0;
  size_t tokenBytes = 0;      // DictIDLen
  uint64_t spellings = 0;     // NumSpellings
  uint64_t synonyms = 0;      // Synonyms
  uint64_t recommended = 0;   // NumRecommended
  uint64_t autocomplete = 0;  // lines of its file
  size_t lineLength = 256;    // MaxKeyWordLineLen; see KeyWordLineLength
  uint32_t pairedWords = 0;   // words below this number are on more than kMostUnpairedPages pages
  int32_t lookupGeneration = 0;
  std::string stopWords;  // in UTF-8; see StopWordsOf
};

// MaxKeyWordLineLen: what the configuration says, and at least so much that the longest line of the
// recommended file, its line feed included, can be read in one piece.
size_t KeyWordLineLength(const SiteConfig& config, size_t longestRecommended);

// Whether the search program will cut queries at all the signs at which pages are cut, so that the
// settings need not name them.
bool CutsSigns(const SiteConfig& config, const IndexCharset& charset);

// Writes every setting that a good results page needs, with what the configuration says instead of
// the defaults. `strings` are those of a Language. Returns the size of the file. The search
// program rejects numbers above 2147483647: IndexError.
uint64_t WriteSettings(const std::filesystem::path& path, const IndexFacts& facts,
                       const SiteConfig& config, const IndexCharset& charset,
                       const std::string& strings);

}  // namespace vela::indexer
