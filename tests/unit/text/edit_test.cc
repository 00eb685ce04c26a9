// edit_test.cc: trimming, replacing and finding in text.

#include "text/edit.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "support/failing_allocation.h"
#include "text/owned_array.h"

namespace vela {
namespace {

TEST(Edit, ThreeBlanksStayThreeBlanks) { EXPECT_EQ(TrimWhitespace("   "), "   "); }

TEST(Edit, ALetterBetweenBlanksIsLeftAlone) { EXPECT_EQ(TrimWhitespace(" a "), "a"); }

TEST(Edit, Trims) {
  const struct {
    const char* what;
    std::string_view input;
    std::string_view trimmed;
    std::string_view trimmedAll;
  } cases[] = {
      {"nothing", "", "", ""},
      {"nothing to trim", "a b", "a b", "a b"},
      {"at the start", " \t\r\na", "a", "a"},
      {"at the end", "a \t\r\n", "a", "a"},
      {"inside stays", "\ta \t b\n", "a \t b", "a \t b"},
      {"all blank is emptied by one only", " \t\r\n ", " \t\r\n ", ""},
      {"one line feed", "\n", "\n", ""},
      {"other white space stays", "\v a \f", "\v a \f", "\v a \f"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(TrimWhitespace(c.input), c.trimmed);
    EXPECT_EQ(TrimAll(c.input), c.trimmedAll);
  }
}

TEST(Edit, TrimCharactersTakesOnlyThoseListed) {
  EXPECT_EQ(TrimCharacters(" \ta ", " "), "\ta");
  EXPECT_EQ(TrimCharacters("--a-b-", "-"), "a-b");
  EXPECT_EQ(TrimCharacters("xyx", "xy"), "");
  EXPECT_EQ(TrimCharacters("", " "), "");
}

TEST(Edit, ReplaceCharacters) {
  const struct {
    const char* what;
    std::string input;
    std::string_view from;
    std::string_view to;
    std::string_view expected;
  } cases[] = {
      {"every occurrence", "a,b,c", ",", " ", "a b c"},
      {"several characters", "a,b.c", ",.", " _", "a b_c"},
      {"one after the other", "ab", "ab", "bc", "cc"},
      {"nothing to replace", "abc", "x", "y", "abc"},
      {"empty text", "", "x", "y", ""},
      {"no characters", "abc", "", "", "abc"},
  };
  for (auto c : cases) {
    SCOPED_TRACE(c.what);
    ReplaceCharacters(c.input.data(), c.input.size(), c.from, c.to);
    EXPECT_EQ(c.input, c.expected);
  }
}

TEST(Edit, ReplaceAll) {
  const struct {
    const char* what;
    std::string_view input;
    std::string_view from;
    std::string_view to;
    bool done;
    std::string_view expected;
  } cases[] = {
      {"nothing in nothing", "", "a", "b", true, ""},
      {"not there", "abc", "x", "yy", true, "abc"},
      {"the same", "abc", "b", "b", true, "abc"},
      {"an empty search text replaces nothing", "abc", "", "x", true, "abc"},
      {"one", "abc", "b", "x", true, "axc"},
      {"at the start and at the end", "aba", "a", "xy", true, "xybxy"},
      {"side by side", "aaa", "a", "bb", true, "bbbbbb"},
      {"by nothing", "a-b-c", "-", "", true, "abc"},
      {"everything by nothing", "---", "-", "", true, ""},
      {"longer by shorter", "a&amp;b", "&amp;", "&", true, "a&b"},
      {"what was put in is not looked at again", "&", "&", "&#38;", true, "&#38;"},
      {"a full result", "a-b", "-", "1234567", true, "a1234567b"},
      {"one over", "a-b", "-", "12345678", false, "a-b"},
      {"over at the first of several", "-------", "-", "12", false, "-------"},
      {"over in the rest", "-abcdef", "-", "1234", false, "-abcdef"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    FixedText<10> text;
    Set(text, c.input);
    EXPECT_EQ(ReplaceAll(text, c.from, c.to), c.done);
    EXPECT_EQ(View(text), c.expected);
  }
}

TEST(Edit, ReplaceAllTellsTheNewLength) {
  std::vector<char> text = {'a', '-', 'b', '\0', 0, 0, 0, 0};
  std::vector<char> scratch(8);
  size_t length = 3;
  EXPECT_TRUE(ReplaceAll(text.data(), &length, 8, scratch.data(), "-", "12345"));
  EXPECT_EQ(length, 7u);
  EXPECT_STREQ(text.data(), "a12345b");
  EXPECT_FALSE(ReplaceAll(text.data(), &length, 8, scratch.data(), "b", "67"));
  EXPECT_EQ(length, 7u);
  EXPECT_STREQ(text.data(), "a12345b");
}

class FindNoCaseTest : public testing::Test {
 protected:
  void TearDown() override { g_failAllocationNumber = 0; }
};

TEST_F(FindNoCaseTest, Finds) {
  constexpr size_t kNone = std::string_view::npos;
  const struct {
    const char* what;
    std::string_view text;
    std::string_view word;
    bool utf8;
    size_t limit;
    size_t expected;
  } cases[] = {
      {"at the start", "Hello World", "hello", false, 0, 0},
      {"inside", "Hello World", "WORLD", false, 0, 6},
      {"the first of several", "abcABC", "bc", false, 0, 1},
      {"not there", "Hello World", "word", false, 0, kNone},
      {"longer than the text", "ab", "abc", false, 0, kNone},
      {"in nothing", "", "a", false, 0, kNone},
      {"within the limit", "Hello World", "world", false, 11, 6},
      {"cut by the limit", "Hello World", "world", false, 10, kNone},
      {"a limit beyond the text", "Hello", "LO", false, 100, 3},
      {"accents in UTF-8", "\xC3\x89t\xC3\xA9", "T\xC3\x89", true, 0, 2},
      {"accents in single bytes", "\xC3\x89t\xC3\xA9", "T\xC3\x89", false, 0, kNone},
      {"accents of single bytes stay", "\xC9t\xE9", "\xE9T", false, 0, kNone},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(FindNoCase(c.text, c.word, c.utf8, c.limit), c.expected);
  }
}

TEST_F(FindNoCaseTest, LongTexts) {
  const std::string text = std::string(20000, 'x') + "</HEAD>";
  EXPECT_EQ(FindNoCase(text, "</head>", true), 20000u);
  EXPECT_EQ(FindNoCase(text, "</head>", true, 20006), std::string_view::npos);
}

TEST_F(FindNoCaseTest, WithoutMemoryForALongTextNothingIsFound) {
  const std::string text = std::string(20000, 'x') + "</HEAD>";
  g_failAllocationNumber = 1;
  EXPECT_EQ(FindNoCase(text, "</head>", false), std::string_view::npos);
}

}  // namespace
}  // namespace vela
