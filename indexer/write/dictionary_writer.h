// dictionary_writer.h: the words of the index (format/dictionary.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "indexer/collect/vocabulary.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// What the settings must say about the dictionary.
struct DictionarySizes {
  uint64_t entries = 0;       // NumKeywords, the reserved ones included
  uint64_t variants = 0;      // NumVariants
  uint64_t baseBytes = 0;     // OutputBasewordBufferSize
  uint64_t variantBytes = 0;  // OutputVariantBufferSize
  uint64_t fileBytes = 0;
};

// Writes the texts of the reserved entries, in the character set, and then the words in `order`.
// `offsets` holds the place of each word's list in the word map, by its number in the vocabulary.
DictionarySizes WriteDictionary(const std::filesystem::path& path,
                                std::span<const std::string> reserved, const Vocabulary& vocabulary,
                                const std::vector<uint32_t>& order,
                                const std::vector<uint64_t>& offsets, const IndexCharset& charset);

}  // namespace vela::indexer
