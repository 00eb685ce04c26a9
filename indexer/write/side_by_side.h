// side_by_side.h: on which pages words stand one directly behind the other.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "indexer/write/lookup_writer.h"

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
std::vector<std::vector<RowPlace>> FindRows(std::string_view pageText, const TextShape& shape,
                                            const std::vector<WordRow>& rows);

}  // namespace vela::indexer
