// spelling_check.h: the checks of what is offered in the place of what was typed: words that sound
// alike (format/spelling.h), and words written nearly alike (format/corrections.h).
#pragma once

#include "inspector/check/check_input.h"

namespace vela::inspector {

void CheckSpelling(const CheckInput& input);
void CheckCorrections(const CheckInput& input);

}  // namespace vela::inspector
