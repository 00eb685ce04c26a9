// equal_pages.h: which pages say the same as one before them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

#include "indexer/extract/page.h"

namespace vela::indexer {

// Pages come one by one. Of each two numbers stay in memory.
class EqualPages {
 public:
  // Whether a page before had the same title, description, meta elements and text, as a copy or a
  // hard link has, or was the HTML page made of this text file: the same name but for its ending,
  // and the same text. Pages of little text are never equal: forms and lists of pictures would be.
  // A page that is not equal is remembered.
  [[nodiscard]] bool IsRepeated(const Page& page);

 private:
  std::unordered_set<uint64_t> whole_;   // title, description, meta elements, text
  std::unordered_set<uint64_t> bodies_;  // path without its ending, text; of HTML pages
};

}  // namespace vela::indexer
