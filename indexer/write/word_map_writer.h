// word_map_writer.h: the pages of every word (format/word_map.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "indexer/collect/link_texts.h"
#include "indexer/collect/page_tokens.h"
#include "indexer/collect/postings.h"
#include "indexer/collect/title_mass.h"
#include "indexer/collect/vocabulary.h"

namespace vela::indexer {

struct WordMapResult {
  std::vector<uint64_t> offsets;  // of each word's list, by its number in the vocabulary
  uint64_t fileBytes = 0;
};

// What the scores need to be weights (collect/word_weight.h).
struct WeightInput {
  TitleMasses titles;            // the words of titles are added to it
  std::vector<LinkCount> links;  // by word and page
};

// Writes all lists, by ascending word and page. `tokenBytes` is DictIDLen. With `weights`, which is
// not owned, the scores are weights; null for the scores of collect/score.h.
WordMapResult WriteWordMap(const std::filesystem::path& path, PostingRuns& postings,
                           const Vocabulary& vocabulary, const ChunkedList<PageLengths>& pages,
                           size_t tokenBytes, WeightInput* weights);

}  // namespace vela::indexer
