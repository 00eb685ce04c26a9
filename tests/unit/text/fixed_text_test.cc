// fixed_text_test.cc: the silent cut at the size of the text.

#include "text/fixed_text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>

namespace vela {
namespace {

using Text8 = FixedText<8>;  // 7 bytes and the terminator

TEST(FixedText, StartsEmpty) {
  const Text8 t;
  EXPECT_TRUE(IsEmpty(t));
  EXPECT_EQ(View(t), "");
  EXPECT_EQ(Text8::kCapacity, 7u);
}

TEST(FixedText, SetKeepsAtMostOneByteLessThanItsSize) {
  const struct {
    const char* what;
    std::string_view input;
    std::string_view expected;
  } cases[] = {
      {"empty", "", ""},
      {"one below full", "123456", "123456"},
      {"full", "1234567", "1234567"},
      {"one over", "12345678", "1234567"},
      {"far over", "123456789012345678901234567890", "1234567"},
      {"the cut is by bytes, also inside a character", "123456\xC3\xA9", "123456\xC3"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Text8 t;
    Set(t, "before");
    Set(t, c.input);
    EXPECT_EQ(View(t), c.expected);
    EXPECT_EQ(strlen(t.bytes), c.expected.size());
    EXPECT_EQ(IsEmpty(t), c.expected.empty());
  }
}

TEST(FixedText, AppendCutsBehindWhatIsThere) {
  const struct {
    const char* what;
    std::string_view start;
    std::string_view input;
    std::string_view expected;
  } cases[] = {
      {"nothing to nothing", "", "", ""},         {"nothing to something", "abc", "", "abc"},
      {"one below full", "abc", "def", "abcdef"}, {"full", "abc", "defg", "abcdefg"},
      {"one over", "abc", "defgh", "abcdefg"},    {"to a full text", "abcdefg", "h", "abcdefg"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Text8 t;
    Set(t, c.start);
    Append(t, c.input);
    EXPECT_EQ(View(t), c.expected);
    EXPECT_EQ(t.bytes[c.expected.size()], '\0');
  }
}

TEST(FixedText, AppendfCutsTheSameWay) {
  const struct {
    const char* what;
    int number;
    std::string_view expected;
  } cases[] = {
      {"one below full", 123, "abc123"},
      {"full", 1234, "abc1234"},
      {"one over", 12345, "abc1234"},
      {"far over", 1234567890, "abc1234"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Text8 t;
    Set(t, "abc");
    Appendf(t, "%d", c.number);
    EXPECT_EQ(View(t), c.expected);
  }
  Text8 full;
  Set(full, "1234567");
  Appendf(full, "%s", "x");
  EXPECT_EQ(View(full), "1234567");
}

TEST(FixedText, ASizeOfOneHoldsNothing) {
  FixedText<1> t;
  Set(t, "x");
  Append(t, "y");
  Appendf(t, "%d", 1);
  EXPECT_EQ(View(t), "");
  EXPECT_EQ(t.bytes[0], '\0');
}

TEST(FixedText, ClearEmpties) {
  Text8 t;
  Set(t, "abc");
  Clear(t);
  EXPECT_TRUE(IsEmpty(t));
  Append(t, "x");
  EXPECT_EQ(View(t), "x");
}

}  // namespace
}  // namespace vela
