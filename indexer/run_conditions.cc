#include "indexer/run_conditions.h"

#include <chrono>
#include <thread>

#include "indexer/report/index_error.h"

namespace vela::indexer {

void CheckStop(const volatile std::sig_atomic_t& stop) {
  if (stop != 0) {
    throw IndexError(ExitStatus::kInterrupted, "Interrupted: the index was not changed.");
  }
}

PublishSystem PublishSystemOf(const Options& options, Progress& progress,
                              const volatile std::sig_atomic_t& stop) {
  PublishSystem system;
  system.keepsLast = options.keepLast;
  if (!options.wait) return system;
  system.whenBusy = [&progress, &stop, told = false]() mutable {
    if (!told) progress.Begin("Waiting for another run", 0);
    told = true;
    CheckStop(stop);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  };
  return system;
}

}  // namespace vela::indexer
