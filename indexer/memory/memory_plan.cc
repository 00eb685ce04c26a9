#include "indexer/memory/memory_plan.h"

#include <algorithm>

namespace vela::indexer {

namespace {

constexpr uint64_t kMegabyte = uint64_t{1} << 20;
// Of the program itself and of the pages that are being read.
constexpr uint64_t kProgramBytes = 32 * kMegabyte;
// More is of no use to a thread, or for waiting.
constexpr uint64_t kMostKnown = 24 * kMegabyte;
constexpr uint64_t kMostWaiting = 16 * kMegabyte;
// What the process may hold beyond its memory before it lets go of some. Until that is noticed, it
// may take some fifty megabytes more.
constexpr uint64_t kBeyondBytes = 8 * kMegabyte;
// Of large memory, what may lie in a file: room for what is used most of it. Ordinary memory is
// quicker.
constexpr uint64_t kFiledBytes = 48 * kMegabyte;

}  // namespace

MemoryPlan PlanMemory(uint64_t bytes, unsigned jobs) {
  const uint64_t known = std::clamp(bytes / 8 / std::max(jobs, 1U), kMegabyte, kMostKnown);
  const uint64_t waiting = std::clamp(bytes / 32, kMegabyte, kMostWaiting);
  const uint64_t others = kProgramBytes + waiting + known * jobs;
  // With many threads and little memory the threads' part counts as extra.
  const uint64_t collection = std::max(bytes / 4, bytes - std::min(bytes, others));
  return {.collection = collection,
          .waiting = waiting,
          .known = known,
          .ordinary = std::max(bytes / 8 * 5, bytes - std::min(bytes, kFiledBytes)),
          .resident = bytes + kBeyondBytes};
}

}  // namespace vela::indexer
