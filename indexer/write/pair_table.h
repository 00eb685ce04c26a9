// pair_table.h: which words stand beside each other, told text by text, until it is known where in
// the lookup file that is to stand.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "format/lookup.h"
#include "indexer/collect/temporary_file.h"
#include "indexer/write/page_text_scan.h"

namespace vela::indexer {

class PairTable {
 public:
  // Reads the page text of the index in `folder`, which is complete, and keeps the records in a
  // temporary file there. Of words from number `pairedWords` on nothing is told. Throws IndexError.
  PairTable(const std::filesystem::path& folder, const TextShape& text, uint32_t pairedWords);

  // Where each text begins, and the first of its records; a last one for the end. None where more
  // is to be said of this page text than the tables can hold.
  const std::vector<LookupText>& texts() const { return texts_; }
  // Calls `use(record)` for the records of all texts in their order. Throws IndexError.
  template <typename Use>
  void ForEach(Use use) {
    for (uint64_t at = 0; at < records_.size(); at += portion_.size() * sizeof(WordPairs)) {
      ReadPortion(at);
      for (const WordPairs& record : portion_) use(record);
    }
  }

 private:
  void ReadPortion(uint64_t at);

  std::vector<LookupText> texts_;
  TemporaryFile records_;
  std::vector<WordPairs> portion_;  // of them, being read
};

}  // namespace vela::indexer
