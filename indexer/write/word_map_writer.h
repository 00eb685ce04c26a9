// word_map_writer.h: vela_wordmap.vdat, read by src/index/word_map.h.
//
//   offset  size  of each word's list
//   0       4     count of the records that follow
//   4       10    per record: 1 score, 1 blocks (proximity), 3 page, 5 position in the page text
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "indexer/collect/page_tokens.h"
#include "indexer/collect/postings.h"
#include "indexer/collect/vocabulary.h"

namespace vela::indexer {

struct WordMapResult {
  std::vector<uint64_t> offsets;  // of each word's list, by its number in the vocabulary
  uint64_t fileBytes = 0;
};

// Writes all lists, by ascending word and page. `tokenBytes` is DictIDLen.
WordMapResult WriteWordMap(const std::filesystem::path& path, PostingRuns& postings,
                           const Vocabulary& vocabulary, const std::vector<PageLengths>& pages,
                           size_t tokenBytes);

}  // namespace vela::indexer
