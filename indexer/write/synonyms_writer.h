// synonyms_writer.h: the other words by which a word finds pages (format/synonyms.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "indexer/collect/vocabulary.h"
#include "indexer/config/site_config.h"
#include "indexer/words/word_forms.h"
#include "indexer/write/lookup_writer.h"

namespace vela::indexer {

struct SynonymSizes {
  uint64_t keys = 0;  // Synonyms; 0 when no file was written
  uint64_t fileBytes = 0;
};

// What the words of a site are written from.
struct SynonymInput {
  const Vocabulary& vocabulary;
  const std::vector<uint32_t>& order;    // DictionaryOrder
  const std::vector<uint64_t>& offsets;  // of the lists in the word map, as WriteWordMap gives them
  uint64_t firstWord = 0;                // its number in the dictionary
  TextShape text;
  bool utf8 = true;
  bool weighs = false;         // the scores of the word map are weights (format/word_weight.h)
  bool findsCompounds = true;  // those of the site join the rules
  bool isGerman = false;       // parts of compounds find them
  WordForms& forms;
  const std::vector<SynonymRule>& rules;
};

// Reads the page text and the word map of the index in `folder`, which are complete, and writes the
// file beside them.
SynonymSizes WriteSynonyms(const std::filesystem::path& folder, const SynonymInput& input);

}  // namespace vela::indexer
