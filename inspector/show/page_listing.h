// page_listing.h: what an index says of one page.
#pragma once

#include <cstdint>
#include <string>

#include "inspector/findings/json_text.h"
#include "inspector/opened/opened_index.h"

namespace vela::inspector {

// Its record, its texts, and the words that find it, the heaviest first.
std::string PageText(const OpenedIndex& index, uint32_t page);
void WritePage(const OpenedIndex& index, uint32_t page, JsonText& json);

// The text of the page as the index has it: its words in their spellings and the signs between
// them, a line for each stretch that no phrase crosses.
std::string RunningText(const OpenedIndex& index, uint32_t page);

}  // namespace vela::inspector
