#include "indexer/run_conditions.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <thread>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

constexpr uint64_t kMegabyte = uint64_t{1} << 20;

}  // namespace

unsigned JobsOf(const Options& options) {
  const auto wanted = static_cast<unsigned>(options.jobs);
  return wanted != 0 ? wanted : std::max(1U, std::thread::hardware_concurrency());
}

MemoryPlan MemoryOf(const Options& options) {
  return PlanMemory(options.memoryMegabytes * kMegabyte, JobsOf(options));
}

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
