// corrections_writer.h: the words that a misspelled one may be meant as (format/corrections.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "indexer/collect/vocabulary.h"

namespace vela::indexer {

// Takes the words that pages write, up to kCorrectionWordLimit of those on the most pages. With
// stemming a word of the dictionary is the stem of several. `order` is DictionaryOrder; `utf8` says
// whether the index is in UTF-8. Returns the size of the file in bytes.
uint64_t WriteCorrections(const std::filesystem::path& path, const Vocabulary& vocabulary,
                          const std::vector<uint32_t>& order, bool utf8);

}  // namespace vela::indexer
