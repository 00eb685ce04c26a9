// template_check.h: the check of the page around the results (format/template_file.h).
#pragma once

#include "inspector/check/check_input.h"

namespace vela::inspector {

void CheckTemplate(const CheckInput& input);

}  // namespace vela::inspector
