// page_text_check.h: the check of the page text (format/page_text.h).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "inspector/check/check_input.h"

namespace vela::inspector {

// Where the text of each page begins, and one more for the end of the last one. As many as the page
// text has, whatever the settings say.
using TextStarts = std::vector<uint64_t>;

// `spellings` are those that the dictionary has of each word. Empty where the index has no page
// text.
TextStarts CheckPageText(const CheckInput& input, std::span<const uint32_t> spellings);

}  // namespace vela::inspector
