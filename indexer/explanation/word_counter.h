// word_counter.h: how many words a text has, as the index counts them.
#pragma once

#include <cstdint>
#include <string>

#include "indexer/collect/page_block.h"

namespace vela::indexer {

class WordCounter {
 public:
  // `maker` outlives this; `base` is the site's address.
  WordCounter(BlockMaker& maker, std::string base);

  // Of what the maker was stopped in, any number.
  uint32_t Of(std::string text);

 private:
  BlockMaker& maker_;
  std::string base_;
};

}  // namespace vela::indexer
