// sections_check.h: the check of the sections of long pages (format/sections.h).
#pragma once

#include "inspector/check/check_input.h"
#include "inspector/check/page_text_check.h"

namespace vela::inspector {

void CheckSections(const CheckInput& input, const TextStarts& texts);

}  // namespace vela::inspector
