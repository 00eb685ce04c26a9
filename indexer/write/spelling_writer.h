// spelling_writer.h: vela_spelling.vdat, read by src/index/spelling.h: one line a sound key, sorted
// by key, with the numbers of up to three dictionary words that have it.
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
// DictionaryOrder.
SpellingSizes WriteSpelling(const std::filesystem::path& path, const Vocabulary& vocabulary,
                            const std::vector<uint32_t>& order);

}  // namespace vela::indexer
