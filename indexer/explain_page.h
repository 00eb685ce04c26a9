// explain_page.h: what becomes of one page, and why (--explain-page).
#pragma once

#include <csignal>

#include "indexer/config/options.h"
#include "indexer/report/explanation.h"
#include "indexer/report/progress.h"

namespace vela::indexer {

// Reads the page that options.explainPage names as a run of these options would, and writes
// nothing. Of a small site the pages before it are read as well, to find copies. Throws IndexError.
Explanation ExplainPage(const Options& options, Progress& progress,
                        const volatile std::sig_atomic_t& stop);

}  // namespace vela::indexer
