// check_index.h: checks an index from end to end. Nothing is written.
#pragma once

#include "inspector/findings/findings.h"
#include "inspector/findings/progress.h"
#include "inspector/opened/opened_index.h"

namespace vela::inspector {

void CheckIndex(const OpenedIndex& index, Findings& findings, Progress& progress);

}  // namespace vela::inspector
