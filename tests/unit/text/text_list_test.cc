// text_list_test.cc: a growing list of texts.

#include "text/text_list.h"

#include <gtest/gtest.h>

#include <string>

#include "support/failing_allocation.h"

namespace vela {
namespace {

class TextListTest : public testing::Test {
 protected:
  void TearDown() override { g_failAllocationNumber = 0; }
};

TEST_F(TextListTest, KeepsTextsInOrder) {
  TextList list;
  EXPECT_EQ(list.size(), 0);
  ASSERT_TRUE(list.TryAdd("first"));
  ASSERT_TRUE(list.TryAdd(""));
  ASSERT_TRUE(list.TryAdd("third"));
  EXPECT_EQ(list.size(), 3);
  EXPECT_STREQ(list.At(0), "first");
  EXPECT_STREQ(list.At(1), "");
  EXPECT_STREQ(list.At(2), "third");
}

TEST_F(TextListTest, GrowsOverManyTexts) {
  TextList list;
  for (int i = 0; i < 1000; ++i) ASSERT_TRUE(list.TryAdd("text " + std::to_string(i)));
  EXPECT_EQ(list.size(), 1000);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(list.At(i), "text " + std::to_string(i));
}

TEST_F(TextListTest, ATextWithANulEndsEarly) {
  TextList list;
  ASSERT_TRUE(list.TryAdd(std::string_view("ab\0cd", 5)));
  ASSERT_TRUE(list.TryAdd("next"));
  EXPECT_STREQ(list.At(0), "ab");
  EXPECT_STREQ(list.At(1), "next");
}

TEST_F(TextListTest, AFailedAddLeavesTheList) {
  // Both blocks must grow for the first text; each in turn cannot.
  for (int32_t failing = 1; failing <= 2; ++failing) {
    SCOPED_TRACE(failing);
    TextList list;
    g_failAllocationNumber = failing;
    EXPECT_FALSE(list.TryAdd("lost"));
    EXPECT_EQ(list.size(), 0);
    ASSERT_TRUE(list.TryAdd("kept"));
    EXPECT_EQ(list.size(), 1);
    EXPECT_STREQ(list.At(0), "kept");
    g_failAllocationNumber = 1;
    EXPECT_FALSE(list.TryAdd(std::string(1000, 'x')));
    g_failAllocationNumber = 0;
    EXPECT_EQ(list.size(), 1);
    EXPECT_STREQ(list.At(0), "kept");
  }
}

TEST_F(TextListTest, TruncateKeepsTheFirst) {
  TextList list;
  for (const char* text : {"a", "b", "c"}) ASSERT_TRUE(list.TryAdd(text));
  list.Truncate(5);
  EXPECT_EQ(list.size(), 3);
  list.Truncate(1);
  EXPECT_EQ(list.size(), 1);
  ASSERT_TRUE(list.TryAdd("d"));
  EXPECT_EQ(list.size(), 2);
  EXPECT_STREQ(list.At(0), "a");
  EXPECT_STREQ(list.At(1), "d");
  list.Truncate(0);
  EXPECT_EQ(list.size(), 0);
}

TEST_F(TextListTest, ReleaseEmpties) {
  TextList list;
  ASSERT_TRUE(list.TryAdd("text"));
  list.Release();
  EXPECT_EQ(list.size(), 0);
  ASSERT_TRUE(list.TryAdd("again"));
  EXPECT_STREQ(list.At(0), "again");
}

}  // namespace
}  // namespace vela
