// word_map_writer.h: the pages of every word (format/word_map.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "indexer/collect/page_tokens.h"
#include "indexer/collect/postings.h"
#include "indexer/collect/title_mass.h"
#include "indexer/collect/vocabulary.h"

namespace vela::indexer {

struct WordMapResult {
  std::vector<uint64_t> offsets;  // of each word's list, by its number in the vocabulary
  uint64_t fileBytes = 0;
};

// Writes all lists, by ascending word and page. `tokenBytes` is DictIDLen. With `titles` the scores
// are weights (collect/word_weight.h) and the words of titles are added to it; it is not owned,
// null for the scores of collect/score.h.
WordMapResult WriteWordMap(const std::filesystem::path& path, PostingRuns& postings,
                           const Vocabulary& vocabulary, const std::vector<PageLengths>& pages,
                           size_t tokenBytes, TitleMasses* titles);

}  // namespace vela::indexer
