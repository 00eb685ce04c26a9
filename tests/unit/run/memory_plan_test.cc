#include "indexer/memory_plan.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

constexpr uint64_t kMegabyte = uint64_t{1} << 20;

TEST(MemoryPlan, DividesWhatThereIs) {
  const struct {
    const char* what;
    uint64_t megabytes;
    unsigned jobs;
    uint64_t collection;
    uint64_t waiting;
    uint64_t known;
  } cases[] = {
      // 32 are the program's.
      {"usual", 256, 2, 184, 8, 16},
      {"one thread keeps no more than it can use", 256, 1, 192, 8, 24},
      {"many threads share their part", 256, 32, 184, 8, 1},
      {"much memory", 4096, 2, 4000, 16, 24},
      {"a quarter at least is for what is collected", 32, 8, 8, 1, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const MemoryPlan plan = PlanMemory(c.megabytes * kMegabyte, c.jobs);
    EXPECT_EQ(plan.collection, c.collection * kMegabyte);
    EXPECT_EQ(plan.waiting, c.waiting * kMegabyte);
    EXPECT_EQ(plan.known, c.known * kMegabyte);
  }
}

}  // namespace
}  // namespace vela::indexer
