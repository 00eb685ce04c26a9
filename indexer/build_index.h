// build_index.h: the whole way from a site's folder to its index. Start reading here.
#pragma once

#include <csignal>

#include "indexer/config/options.h"
#include "indexer/report/progress.h"
#include "indexer/report/summary.h"

namespace vela::indexer {

// Reads the site and puts the index into place. Throws IndexError; the old index is then untouched.
// `stop`, set from outside (a signal), ends the run with ExitStatus::kInterrupted.
IndexSummary BuildIndex(const Options& options, Progress& progress,
                        const volatile std::sig_atomic_t& stop);

}  // namespace vela::indexer
