// autocomplete_writer.h: the suggestions of the site (format/autocomplete.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "indexer/words/index_charset.h"

namespace vela::indexer {

struct AutocompleteSizes {
  uint64_t lines = 0;
  uint64_t fileBytes = 0;
  std::vector<std::string> texts;  // of those lines
};

// Writes the first `mostLines` of `texts` (see SuggestionList::Take) that the character set has and
// that fit a line of `lineLength`, the setting MaxKeyWordLineLen.
AutocompleteSizes WriteAutocomplete(const std::filesystem::path& path,
                                    std::span<const std::string> texts, uint64_t mostLines,
                                    size_t lineLength, const IndexCharset& charset);

}  // namespace vela::indexer
