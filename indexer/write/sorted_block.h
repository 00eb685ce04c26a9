// sorted_block.h: one block of the sorted words of the lookup file (format/lookup.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "format/lookup.h"

namespace vela::indexer {

class SortedBlock {
 public:
  // Adds a text, with ASCII letters in lower case and of at most kLookupTextLimit bytes. False, and
  // nothing is added, when the block has no room for it; an empty one always has.
  bool Add(std::string_view text, uint32_t word, bool isVariant);

  std::string_view content() const { return content_; }
  void Clear();

 private:
  std::string content_;
  std::string former_;  // the text before
  LookupRecentWords recent_;
};

}  // namespace vela::indexer
