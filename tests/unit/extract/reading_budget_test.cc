#include "indexer/extract/reading_budget.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(ReadingBudget, MemoryIsCounted) {
  ReadingBudget budget;
  budget.bytesLimit = 100;
  EXPECT_TRUE(TakeBytes(budget, 60));
  EXPECT_TRUE(TakeBytes(budget, 40));
  EXPECT_FALSE(TakeBytes(budget, 1));
  EXPECT_EQ(budget.status, Reason::kMarkupTooLarge);
  EXPECT_EQ(budget.bytes, 100u);
  EXPECT_FALSE(TakeBytes(budget, 0));
}

TEST(ReadingBudget, TheClockIsReadNowAndThen) {
  ReadingBudget budget;
  EXPECT_TRUE(TakeSteps(budget, 1));
  budget.deadline = std::chrono::steady_clock::now() - std::chrono::seconds(1);
  EXPECT_TRUE(TakeSteps(budget, 1));
  EXPECT_FALSE(TakeSteps(budget, 1000000));
  EXPECT_EQ(budget.status, Reason::kMarkupTooSlow);
}

TEST(ReadingBudget, LimitsGrowWithThePage) {
  volatile std::sig_atomic_t stop = 1;
  ReadingLimits limits;
  limits.bytes = 100;
  limits.factor = 3;
  limits.stop = &stop;
  ReadingBudget budget = StartReading(limits, 50);
  EXPECT_EQ(budget.bytesLimit, 250u);
  EXPECT_GT(budget.deadline, std::chrono::steady_clock::now());
  CheckBudget(budget);
  EXPECT_EQ(budget.status, Reason::kStopped);
}

TEST(ReadingBudget, TheFirstReasonStays) {
  ReadingBudget budget;
  volatile std::sig_atomic_t stop = 0;
  budget.stop = &stop;
  EXPECT_TRUE(TakeSteps(budget, 1000000));
  stop = 1;
  EXPECT_FALSE(TakeSteps(budget, 1000000));
  budget.bytesLimit = 0;
  EXPECT_FALSE(TakeBytes(budget, 1));
  EXPECT_EQ(budget.status, Reason::kStopped);
}

}  // namespace
}  // namespace vela::indexer
