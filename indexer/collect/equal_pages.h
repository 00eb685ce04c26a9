// equal_pages.h: which pages say the same as one before them.
#pragma once

#include <cstdint>
#include <optional>

#include "indexer/extract/page.h"
#include "indexer/site/print_table.h"

namespace vela::indexer {

// Fingerprints of a page: of all that it says.
struct PagePrints {
  bool isLong = false;        // it says enough to be compared
  uint64_t whole = 0;         // of title, description, meta elements, text
  uint64_t body = 0;          // of path without its ending, text
  bool isComparable = false;  // has enough words for the next
  uint64_t similar = 0;       // by which texts that are nearly the same are known (similar_pages.h)
};

PagePrints PrintsOf(const Page& page);

// Pages come one by one. Of each two fingerprints stay in memory.
class EqualPages {
 public:
  // The number of a page before that had the same title, description, meta elements and text, as a
  // copy or a hard link has, or was the HTML page made of this file: the same name but for its
  // ending, and the same text. Pages of little text are never equal: forms and lists of pictures
  // would be. A page that is equal to none is remembered as page `number`.
  [[nodiscard]] std::optional<uint32_t> EqualTo(const PagePrints& page, FileType type,
                                                uint32_t number);
  // Bytes that it takes, nearly.
  size_t memory() const { return whole_.memory() + bodies_.memory(); }

 private:
  PrintTable<uint32_t> whole_;   // numbers of pages
  PrintTable<uint32_t> bodies_;  // the same, of HTML pages
};

}  // namespace vela::indexer
