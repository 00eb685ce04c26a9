// run_conditions.h: when a run may write the index, and when it ends before its end.
#pragma once

#include <csignal>

#include "indexer/config/options.h"
#include "indexer/publish/index_place.h"
#include "indexer/report/progress.h"

namespace vela::indexer {

// Throws IndexError, kInterrupted, once `stop` is set from outside (a signal).
void CheckStop(const volatile std::sig_atomic_t& stop);

// How a run of these options publishes, and what it does while another one is writing the same
// index. `progress` and `stop` outlive what is returned.
PublishSystem PublishSystemOf(const Options& options, Progress& progress,
                              const volatile std::sig_atomic_t& stop);

}  // namespace vela::indexer
