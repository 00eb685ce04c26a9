#include "index/page_text.h"

#include <gtest/gtest.h>

#include <string>

namespace vela {
namespace {

using namespace std::string_literals;

TEST(PageText, PlaceholderIsNeverSeen) {
  // The seventh byte, the "s", is not among the six that are looked at.
  EXPECT_FALSE(IsPageTextPlaceholder("T\0h\0i\0s\0 \0f\0i\0l\0e\0"s));
  EXPECT_FALSE(IsPageTextPlaceholder("T\0h\0i\0"s));
  EXPECT_FALSE(IsPageTextPlaceholder("T"));
  EXPECT_FALSE(IsPageTextPlaceholder(""));
}

}  // namespace
}  // namespace vela
