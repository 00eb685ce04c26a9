// pair_rows.h: the rows of slots that tell which words stand beside each other in a text
// (format/word_pairs.h).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "format/word_pairs.h"

namespace vela::indexer {

// Takes the pairs of one text after the other. The same pairs in the same order give the same
// records.
class PairRows {
 public:
  // A pair of the text at hand, as often as it stands there. No word has number 0.
  void Add(uint32_t first, uint32_t second);
  // Ends the text: its records, valid until the next one ends; none when it has no pairs.
  std::span<const WordPairs> Finish();

 private:
  // What the slots from one on have to add up to.
  struct Row {
    uint32_t mask = 0;  // 0: nothing is asked
    uint32_t value = 0;
  };

  void Grow();
  bool Solve(uint32_t records);
  bool Ask(const WordPairMark& mark);
  void Fill();

  std::vector<uint64_t> pairs_;  // each once
  std::vector<uint64_t> known_;  // a hash table of them; 0: free
  size_t places_ = 0;            // of the table that are in use for this text, a power of two
  std::vector<Row> rows_;        // a slot each
  std::vector<WordPairs> records_;
};

}  // namespace vela::indexer
