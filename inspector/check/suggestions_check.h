// suggestions_check.h: the checks of what is offered while a visitor types (format/autocomplete.h),
// and of the beginnings of its words (format/completions.h).
#pragma once

#include "inspector/check/check_input.h"

namespace vela::inspector {

void CheckSuggestions(const CheckInput& input);
void CheckCompletions(const CheckInput& input);

}  // namespace vela::inspector
