#include "indexer/report/progress.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(Progress, BytesReadWell) {
  const struct {
    uint64_t bytes;
    const char* text;
  } kCases[] = {
      {0, "0 bytes"},     {999, "999 bytes"},     {1000, "1.0 kB"},
      {9949, "9.9 kB"},   {9950, "10 kB"},        {999499, "999 kB"},
      {999500, "1.0 MB"}, {1250000000, "1.2 GB"}, {uint64_t{5000} * 1000000000000, "5000 TB"},
  };
  for (const auto& c : kCases) EXPECT_EQ(BytesText(c.bytes), c.text) << c.bytes;
}

TEST(Progress, CountsAreGroupedByThousands) {
  EXPECT_EQ(CountText(0), "0");
  EXPECT_EQ(CountText(999), "999");
  EXPECT_EQ(CountText(1000), "1,000");
  EXPECT_EQ(CountText(1234567), "1,234,567");
}

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
