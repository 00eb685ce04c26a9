#include "text/shown_numbers.h"

#include <gtest/gtest.h>

namespace vela {
namespace {

TEST(ShownNumbers, BytesReadWell) {
  const struct {
    uint64_t bytes;
    const char* text;
  } kCases[] = {
      {0, "0 bytes"},         {1, "1 byte"},
      {999, "999 bytes"},     {1000, "1.0 kB"},
      {9949, "9.9 kB"},       {9950, "10 kB"},
      {999499, "999 kB"},     {999500, "1.0 MB"},
      {1250000000, "1.2 GB"}, {uint64_t{5000} * 1000000000000, "5000 TB"},
  };
  for (const auto& c : kCases) EXPECT_EQ(BytesText(c.bytes), c.text) << c.bytes;
}

TEST(ShownNumbers, CountsAreGroupedByThousands) {
  EXPECT_EQ(CountText(0), "0");
  EXPECT_EQ(CountText(999), "999");
  EXPECT_EQ(CountText(1000), "1,000");
  EXPECT_EQ(CountText(1234567), "1,234,567");
}

}  // namespace
}  // namespace vela
