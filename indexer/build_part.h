// build_part.h: one part of a site, read for a run that merges all parts.
#pragma once

#include <csignal>

#include "indexer/config/options.h"
#include "indexer/report/progress.h"
#include "indexer/report/summary.h"

namespace vela::indexer {

// Reads the part that `options.part` names and keeps what becomes of its pages, in the folder of
// the state. Throws IndexError. `stop` as for BuildIndex.
IndexSummary BuildPart(const Options& options, Progress& progress,
                       const volatile std::sig_atomic_t& stop);

}  // namespace vela::indexer
