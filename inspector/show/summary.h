// summary.h: what an index holds, in a few lines.
#pragma once

#include <string>

#include "inspector/findings/json_text.h"
#include "inspector/opened/opened_index.h"

namespace vela::inspector {

// Pages, words and spellings, the size of each file, the extensions that are on, the words on most
// pages.
std::string SummaryText(const OpenedIndex& index);
// The same as members of the object at hand.
void WriteSummary(const OpenedIndex& index, JsonText& json);

}  // namespace vela::inspector
