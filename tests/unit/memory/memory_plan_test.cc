#include "indexer/memory/memory_plan.h"

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
    uint64_t ordinary;
    uint64_t resident;
  } cases[] = {
      // 32 are the program's.
      {"usual", 256, 2, 184, 8, 16, 208, 264},
      {"one thread keeps no more than it can use", 256, 1, 192, 8, 24, 208, 264},
      {"many threads share their part", 256, 32, 184, 8, 1, 208, 264},
      {"much memory", 4096, 2, 4000, 16, 24, 4048, 4104},
      {"a quarter at least is for what is collected", 32, 8, 8, 1, 1, 20, 40},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const MemoryPlan plan = PlanMemory(c.megabytes * kMegabyte, c.jobs);
    EXPECT_EQ(plan.collection, c.collection * kMegabyte);
    EXPECT_EQ(plan.waiting, c.waiting * kMegabyte);
    EXPECT_EQ(plan.known, c.known * kMegabyte);
    EXPECT_EQ(plan.ordinary, c.ordinary * kMegabyte);
    EXPECT_EQ(plan.resident, c.resident * kMegabyte);
  }
}

}  // namespace
}  // namespace vela::indexer
