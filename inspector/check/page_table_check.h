// page_table_check.h: the check of the facts and the texts of the pages (format/page_info.h,
// format/page_data.h), and of the recommended ones (format/recommended.h), whose lines stand among
// those of the pages.
#pragma once

#include "inspector/check/check_input.h"

namespace vela::inspector {

void CheckPageTable(const CheckInput& input);

}  // namespace vela::inspector
