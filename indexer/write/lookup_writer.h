// lookup_writer.h: where things stand in the other files (format/lookup.h).
#pragma once

#include <cstdint>
#include <filesystem>

#include "indexer/write/page_text_scan.h"
#include "indexer/write/pair_table.h"

namespace vela::indexer {

// The texts of so few pages are read as soon as what is told of pairs of words in them.
inline constexpr uint32_t kMostUnpairedPages = 16;

struct LookupSizes {
  int32_t generation = 0;  // LookupGeneration; 0 when no file was written
  uint64_t fileBytes = 0;
};

// Reads the dictionary, the page information, the page text and, where there are any, the spelling
// and the autocomplete file of the index in `folder`, which are complete, and writes the lookup
// file beside them. Nothing is written about a file that is not in the form that the writers give
// it, nothing at all for such a dictionary. It takes about 16 bytes of memory a word. The same
// files give the same bytes and generation. Of words from number `pairedWords` on it is not told
// beside which others they stand.
LookupSizes WriteLookup(const std::filesystem::path& folder, const TextShape& text,
                        uint32_t pairedWords);
// The same for whoever has made `pairs` of the page text before, of the same words.
LookupSizes WriteLookup(const std::filesystem::path& folder, const TextShape& text,
                        uint32_t pairedWords, PairTable& pairs);

}  // namespace vela::indexer
