#include "index/seek.h"

#include <gtest/gtest.h>

namespace vela {
namespace {

TEST(CanSeekTo, PositionsAreSigned64BitNumbers) {
  EXPECT_TRUE(CanSeekTo(0));
  EXPECT_TRUE(CanSeekTo(uint64_t{1} << 39));
  EXPECT_TRUE(CanSeekTo(INT64_MAX));
  EXPECT_FALSE(CanSeekTo(uint64_t{1} << 63));
  EXPECT_FALSE(CanSeekTo(UINT64_MAX));
}

}  // namespace
}  // namespace vela
