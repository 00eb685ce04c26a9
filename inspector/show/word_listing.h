// word_listing.h: the pages of a word.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "index/word_map.h"
#include "inspector/findings/json_text.h"
#include "inspector/opened/opened_index.h"

namespace vela::inspector {

// The word of the dictionary by which a query finds `typed`: itself, in lower case, or its stem.
std::optional<uint32_t> FindWord(const OpenedIndex& index, std::string_view typed);

// The word, its spellings and a line for each of its pages.
std::string WordText(const OpenedIndex& index, uint32_t word);
void WriteWord(const OpenedIndex& index, uint32_t word, JsonText& json);

// "weight 40, in the title" or "score 120", then the blocks of the page's text that have the word.
std::string RecordText(const WordMapRecord& record, const Settings& settings);
void WriteRecord(const WordMapRecord& record, const Settings& settings, JsonText& json);

}  // namespace vela::inspector
