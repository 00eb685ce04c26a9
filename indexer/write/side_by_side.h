// side_by_side.h: on which pages words stand one directly behind the other.
#pragma once

#include <cstdint>
#include <vector>

#include "indexer/write/in_file.h"
#include "indexer/write/page_text_scan.h"

namespace vela::indexer {

// Dictionary numbers of two words or more, kSynonymWordsLimit at most.
using WordRow = std::vector<uint32_t>;

// Where a row first stands on a page.
struct RowPlace {
  uint32_t page = 0;
  uint64_t position = 0;  // byte in the page text
};

// The pages of each row, in ascending order, with no sign between its words. Reads the page text
// once, whatever the number of rows.
std::vector<std::vector<RowPlace>> FindRows(InFile& pageText, const TextShape& shape,
                                            const std::vector<WordRow>& rows);

}  // namespace vela::indexer
