// lookup_check.h: the check of the lookup file (format/lookup.h): its blocks, and whether its
// tables say what a pass over the other files says.
#pragma once

#include "inspector/check/check_input.h"

namespace vela::inspector {

void CheckLookup(const CheckInput& input);

}  // namespace vela::inspector
