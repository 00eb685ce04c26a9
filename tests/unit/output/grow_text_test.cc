#include "output/grow_text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::Repeat;

int32_t AppendCopies(GrowText& text, int count) {
  return text.Appendf("%s", Repeat("x", static_cast<size_t>(count)).c_str());
}

TEST(GrowText, GrowsWhenTheLengthReachesTheCapacity) {
  GrowText text;
  ASSERT_TRUE(text.TryCreate(100));
  EXPECT_EQ(AppendCopies(text, 99), 99);
  EXPECT_EQ(text.capacity(), 100);
  EXPECT_EQ(AppendCopies(text, 1), 1);
  EXPECT_EQ(text.length(), 100);
  EXPECT_EQ(text.capacity(), 150);
}

TEST(GrowText, GrowsToWhatIsNeededWhereThatIsMore) {
  GrowText text;
  ASSERT_TRUE(text.TryCreate(100));
  AppendCopies(text, 90);
  EXPECT_EQ(AppendCopies(text, 200), 200);
  EXPECT_EQ(text.capacity(), 291);
  EXPECT_EQ(text.length(), 290);
  EXPECT_EQ(text.view(), Repeat("x", 290));
}

TEST(GrowText, GrowthTable) {
  const struct {
    const char* what;
    int32_t capacity;
    int first;
    int second;
    int32_t expected;
  } cases[] = {
      {"one below", 100, 0, 99, 100},
      {"exactly the capacity", 100, 0, 100, 150},
      {"one below one and a half", 100, 0, 149, 150},
      {"exactly one and a half", 100, 0, 150, 150},
      {"one above one and a half", 100, 0, 151, 152},
      {"one and a half is truncated", 101, 0, 101, 151},
      {"in two steps", 100, 50, 50, 150},
      {"in two steps, to one and a half", 100, 50, 100, 150},
      {"nothing is appended", 100, 99, 0, 100},
      {"the smallest", 1, 0, 0, 1},
      {"the smallest, one byte", 1, 0, 1, 1},
      {"the smallest, two bytes", 1, 0, 2, 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    GrowText text;
    ASSERT_TRUE(text.TryCreate(c.capacity));
    EXPECT_EQ(AppendCopies(text, c.first), c.first);
    EXPECT_EQ(AppendCopies(text, c.second), c.second);
    EXPECT_EQ(text.view(), Repeat("x", static_cast<size_t>(c.first + c.second)));
    EXPECT_EQ(text.length(), c.first + c.second);
    if (c.capacity > 1) {
      EXPECT_EQ(text.capacity(), c.expected);
    }
  }
}

TEST(GrowText, OneWriteIsCutAt10239) {
  const struct {
    const char* what;
    int written;
    size_t kept;
  } cases[] = {
      {"one below", 10238, 10238},
      {"as much as is kept", 10239, 10239},
      {"one above", 10240, 10239},
      {"much more", 12000, 10239},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    GrowText text;
    ASSERT_TRUE(text.TryCreate(100));
    EXPECT_EQ(AppendCopies(text, c.written), c.written);
    EXPECT_EQ(text.view(), Repeat("x", c.kept));
    // Kept: the length counts in full what was asked for.
    EXPECT_EQ(text.length(), c.written);
    EXPECT_EQ(text.capacity(), c.written + 1);
  }
}

TEST(GrowText, ARawWriteCutsAndGrowsAsAFormattedOne) {
  for (const size_t written : {0u, 1u, 99u, 100u, 149u, 150u, 10239u, 10240u, 30000u}) {
    SCOPED_TRACE(written);
    const std::string piece = Repeat("x", written);
    GrowText formatted;
    GrowText raw;
    ASSERT_TRUE(formatted.TryCreate(100) && raw.TryCreate(100));
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(raw.AppendRaw(piece), formatted.Appendf("%s", piece.c_str()));
      EXPECT_EQ(raw.view(), formatted.view());
      EXPECT_EQ(raw.length(), formatted.length());
      EXPECT_EQ(raw.capacity(), formatted.capacity());
    }
  }
}

TEST(GrowText, ARawWriteIsNoFormat) {
  GrowText text;
  EXPECT_EQ(text.AppendRaw("x"), -1);
  ASSERT_TRUE(text.TryCreate(1));
  EXPECT_EQ(text.AppendRaw("100%s%n"), 7);
  EXPECT_EQ(text.view(), "100%s%n");
}

TEST(GrowText, WritesFollowTheTextAlsoAfterACut) {
  GrowText text;
  ASSERT_TRUE(text.TryCreate(100));
  AppendCopies(text, 12000);
  EXPECT_EQ(text.Appendf("%d-%s", 7, "end"), 5);
  EXPECT_EQ(text.view(), Repeat("x", 10239) + "7-end");
  EXPECT_EQ(text.length(), 12005);
}

TEST(GrowText, ClearKeepsTheCapacity) {
  GrowText text;
  ASSERT_TRUE(text.TryCreate(100));
  AppendCopies(text, 500);
  text.Clear();
  EXPECT_EQ(text.view(), "");
  EXPECT_EQ(text.length(), 0);
  EXPECT_EQ(text.capacity(), 501);
  EXPECT_TRUE(text.exists());
  EXPECT_EQ(text.Appendf("again"), 5);
  EXPECT_EQ(text.view(), "again");
}

TEST(GrowText, WithoutText) {
  GrowText text;
  EXPECT_FALSE(text.exists());
  EXPECT_EQ(text.Appendf("x"), -1);
  EXPECT_EQ(text.view(), "");
  text.Clear();
  EXPECT_FALSE(text.exists());
}

TEST(GrowText, NullFormat) {
  GrowText text;
  ASSERT_TRUE(text.TryCreate(100));
  text.Appendf("kept");
  const char* none = nullptr;
  va_list arguments = {};
  EXPECT_EQ(text.AppendFormatted(none, arguments), -1);
  EXPECT_EQ(text.view(), "kept");
  EXPECT_EQ(text.length(), 4);
}

TEST(GrowText, CapacityBelowOne) {
  for (int32_t capacity : {0, -1, INT32_MIN}) {
    GrowText text;
    ASSERT_TRUE(text.TryCreate(capacity));
    EXPECT_EQ(text.view(), "");
    EXPECT_EQ(text.Appendf("abc"), 3);
    EXPECT_EQ(text.view(), "abc");
  }
}

TEST(GrowText, Moves) {
  GrowText first;
  ASSERT_TRUE(first.TryCreate(100));
  first.Appendf("text");
  GrowText second = std::move(first);
  EXPECT_EQ(second.view(), "text");
  EXPECT_EQ(second.length(), 4);
  GrowText third;
  ASSERT_TRUE(third.TryCreate(5));
  third = std::move(second);
  EXPECT_EQ(third.view(), "text");
  EXPECT_EQ(third.capacity(), 100);
}

TEST(GrowText, ManySmallWrites) {
  GrowText text;
  ASSERT_TRUE(text.TryCreate(100));
  std::string expected;
  for (int i = 0; i < 3000; ++i) {
    text.Appendf("%d,", i);
    expected += std::to_string(i) + ",";
  }
  EXPECT_EQ(text.view(), expected);
  EXPECT_EQ(text.length(), static_cast<int32_t>(expected.size()));
}

}  // namespace
}  // namespace vela
