#include "indexer/report/progress.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(Progress, SaysNothingWhenSwitchedOff) {
  testing::internal::CaptureStderr();
  {
    Progress progress(false);
    progress.Begin("Reading", 10);
    progress.Step(5);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Progress, RewritesOneLineAndTakesItAway) {
  testing::internal::CaptureStderr();
  {
    Progress progress(true);
    progress.Begin("Reading pages", 1200);
    progress.Step(1);  // too soon after the last line
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "\r\033[KReading pages 0 of 1,200\r\033[K");
}

}  // namespace
}  // namespace vela::indexer
