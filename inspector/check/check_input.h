// check_input.h: what every check is given.
#pragma once

#include "inspector/findings/findings.h"
#include "inspector/findings/progress.h"
#include "inspector/opened/opened_index.h"

namespace vela::inspector {

struct CheckInput {
  const OpenedIndex& index;
  Findings& findings;
  Progress& progress;
};

}  // namespace vela::inspector
