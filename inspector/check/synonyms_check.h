// synonyms_check.h: the check of the other words by which terms find pages (format/synonyms.h).
#pragma once

#include "inspector/check/check_input.h"
#include "inspector/check/page_text_check.h"

namespace vela::inspector {

void CheckSynonyms(const CheckInput& input, const TextStarts& texts);

}  // namespace vela::inspector
