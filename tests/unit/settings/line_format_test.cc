// line_format_test.cc: the forms of a settings line.

#include "settings/line_format.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>

namespace vela {
namespace {

using namespace std::string_view_literals;

TEST(LineFormat, FirstToken) {
  const struct {
    const char* what;
    std::string_view line;
    std::string_view expected;
  } cases[] = {
      {"empty", "", ""},
      {"blank", " \t\r\n", ""},
      {"a key", "Key = 1\n", "Key"},
      {"blanks before", "  \tKey = 1\n", "Key"},
      {"ended by a tab", "Key\t= 1\n", "Key"},
      {"ended by a carriage return", "catnames\r\n", "catnames"},
      {"the sign belongs to it", "Key=1\n", "Key=1"},
      {"alone", "Key", "Key"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(FirstToken(c.line), c.expected);
  }
}

TEST(LineFormat, Integers) {
  const struct {
    const char* what;
    std::string_view line;
    bool read;
    int32_t value;
  } cases[] = {
      {"plain", "Key = 7\n", true, 7},
      {"carriage return", "Key = 7\r\n", true, 7},
      {"no line feed", "Key = 7", true, 7},
      {"no blanks", "Key=7\n", true, 7},
      {"many blanks and tabs", "Key \t = \t\t 7\n", true, 7},
      {"form feed and vertical tab", "Key\f=\v7\n", true, 7},
      {"negative", "Key = -7\n", true, -7},
      {"plus", "Key = +7\n", true, 7},
      {"text behind", "Key = 7 days\n", true, 7},
      {"hexadecimal is a zero", "Key = 0x1F\n", true, 0},
      {"a fraction is cut", "Key = 1.9\n", true, 1},
      {"saturates above", "Key = 2147483648\n", true, INT32_MAX},
      {"saturates far above", "Key = 99999999999\n", true, INT32_MAX},
      {"saturates below", "Key = -2147483649\n", true, INT32_MIN},
      {"saturates far below", "Key = -99999999999\n", true, INT32_MIN},
      {"blank before the key", " Key = 7\n", false, 55},
      {"no number", "Key = abc\n", false, 55},
      {"quoted", "Key = \"7\"\n", false, 55},
      {"a sign alone", "Key = -\n", false, 55},
      {"a blank inside the number", "Key = - 7\n", false, 55},
      {"nothing behind the sign", "Key =\n", false, 55},
      {"no sign", "Key 7\n", false, 55},
      {"two signs", "Key == 7\n", false, 55},
      {"another key", "Kex = 7\n", false, 55},
      {"a longer key", "Keys = 7\n", false, 55},
      {"empty", "", false, 55},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    int32_t value = 55;
    EXPECT_EQ(ParseInteger(c.line, "Key", value), c.read);
    EXPECT_EQ(value, c.value);
  }
}

TEST(LineFormat, QuotedTexts) {
  const struct {
    const char* what;
    std::string_view line;
    bool read;
    std::string_view value;
  } cases[] = {
      {"plain", "Key = \"text\"\n", true, "text"},
      {"carriage return", "Key = \"text\"\r\n", true, "text"},
      {"no blanks", "Key=\"text\"\n", true, "text"},
      {"many blanks and tabs", "Key \t= \t \"text\"\n", true, "text"},
      {"blanks inside the quotes", "Key = \" a b \"\n", true, " a b "},
      {"up to the next quote", "Key = \"a\"b\"\n", true, "a"},
      {"an apostrophe is no quote", "Key = \"it's\"\n", true, "it's"},
      {"unclosed, to the line's end", "Key = \"text\n", true, "text\n"},
      {"unclosed, carriage return", "Key = \"text\r\n", true, "text\r\n"},
      {"unclosed, no line feed", "Key = \"text", true, "text"},
      {"unclosed, the line feed alone", "Key = \"\n", true, "\n"},
      {"empty", "Key = \"\"\n", false, "kept"},
      {"nothing behind the quote", "Key = \"", false, "kept"},
      {"no quotes", "Key = text\n", false, "kept"},
      {"blank before the key", " Key = \"text\"\n", false, "kept"},
      {"no sign", "Key \"text\"\n", false, "kept"},
      {"another key", "Kez = \"text\"\n", false, "kept"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    std::string_view value = "kept";
    EXPECT_EQ(ParseQuoted(c.line, "Key", value), c.read);
    EXPECT_EQ(value, c.value);
  }
}

TEST(LineFormat, QuotedBehindAnyToken) {
  const struct {
    const char* what;
    std::string_view line;
    bool read;
    std::string_view value;
  } cases[] = {
      {"plain", "Key = \"text\"\n", true, "text"},
      {"blanks before the key", " \t Key = \"text\"\n", true, "text"},
      {"empty", "Key = \"\"\n", false, "kept"},
      {"the sign in the token", "Key=\"text\"\n", false, "kept"},
      {"no sign", "Key \"text\"\n", false, "kept"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    std::string_view value = "kept";
    EXPECT_EQ(ParseQuotedAfterToken(c.line, value), c.read);
    EXPECT_EQ(value, c.value);
  }
}

TEST(LineFormat, TheRestOfALine) {
  const struct {
    const char* what;
    std::string_view line;
    bool read;
    std::string_view value;
  } cases[] = {
      {"plain", "Key =  \"a\" \"b\"\n", true, "\"a\" \"b\""},
      {"no blanks", "Key=a b\n", true, "a b"},
      {"a carriage return stays", "Key = a\r\n", true, "a\r"},
      {"no line feed", "Key = a", true, "a"},
      {"nothing", "Key =\n", false, "kept"},
      {"another key", "Kez = a\n", false, "kept"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    std::string_view value = "kept";
    EXPECT_EQ(ParseRest(c.line, "Key", value), c.read);
    EXPECT_EQ(value, c.value);
  }
}

}  // namespace
}  // namespace vela
