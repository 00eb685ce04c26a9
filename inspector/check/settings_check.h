// settings_check.h: the check of the settings file (format/settings_file.h), line by line and its
// values against each other.
#pragma once

#include "inspector/check/check_input.h"

namespace vela::inspector {

void CheckSettings(const CheckInput& input);

}  // namespace vela::inspector
