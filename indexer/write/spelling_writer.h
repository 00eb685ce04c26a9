// spelling_writer.h: which words of the dictionary sound alike (format/spelling.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "indexer/collect/vocabulary.h"

namespace vela::indexer {

struct SpellingSizes {
  uint64_t entries = 0;  // NumSpellings
  uint64_t fileBytes = 0;
};

// Takes the words that pages write, as the dictionary has them, that are made of
// letters alone, two at least. Those on more pages come first under their key. `order` is
// DictionaryOrder, `firstWord` the number of its first word in the dictionary.
SpellingSizes WriteSpelling(const std::filesystem::path& path, const Vocabulary& vocabulary,
                            const std::vector<uint32_t>& order, uint64_t firstWord);

}  // namespace vela::indexer
