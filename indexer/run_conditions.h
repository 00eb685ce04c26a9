// run_conditions.h: with what a run works, when it may write the index, and when it ends early.
#pragma once

#include <csignal>

#include "indexer/config/options.h"
#include "indexer/memory/memory_plan.h"
#include "indexer/publish/index_place.h"
#include "indexer/report/progress.h"

namespace vela::indexer {

// The threads that read pages.
unsigned JobsOf(const Options& options);

MemoryPlan MemoryOf(const Options& options);

// Throws IndexError, kInterrupted, once `stop` is set from outside (a signal).
void CheckStop(const volatile std::sig_atomic_t& stop);

// How a run of these options publishes, and what it does while another one is writing the same
// index. `progress` and `stop` outlive what is returned.
PublishSystem PublishSystemOf(const Options& options, Progress& progress,
                              const volatile std::sig_atomic_t& stop);

}  // namespace vela::indexer
