#include "search/typed_text.h"

#include <gtest/gtest.h>

#include <string>

namespace vela {
namespace {

std::string Replaced(const std::string& text, bool utf8 = true) {
  QueryText query;
  Set(query, text);
  ReplaceUnshowable(query, utf8);
  return std::string(View(query));
}

TEST(TypedText, WhatNoAnswerShowsIsReplaced) {
  const struct {
    const char *what, *typed, *shown;
  } kCases[] = {
      {"plain text", "a \"b\" <c>", "a \"b\" <c>"},
      {"letters beyond ASCII", "caf\u00E9 \u56F3 \U0001F680", "caf\u00E9 \u56F3 \U0001F680"},
      {"a control character",
       "a\x01"
       "b\x7F",
       "a\uFFFDb\uFFFD"},
      {"a tab and line ends", "a\tb\r\nc", "a b  c"},
      {"a byte of no character",
       "a\xFF"
       "b",
       "a\uFFFDb"},
      {"a character cut short", "a\xE2\x80", "a\uFFFD\uFFFD"},
      {"a surrogate", "\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
      {"what XML does not allow", "\uFFFE\uFFFF", "\uFFFD\uFFFD"},
      {"the replacement itself", "\uFFFD", "\uFFFD"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Replaced(c.typed), c.shown);
  }
}

TEST(TypedText, InASingleByteSetOnlyControlCharactersAreReplaced) {
  EXPECT_EQ(Replaced("\xE9t\xE9\x01x\tz", false), "\xE9t\xE9 x z");
}

TEST(TypedText, WhatGrowsTooLongIsCutBehindACharacter) {
  constexpr size_t kMost = kQuerySize - 1;
  EXPECT_EQ(Replaced(std::string(kMost, '\xFF')).size(), kMost / 3 * 3);
  const std::string letters(kMost - 2, 'a');
  EXPECT_EQ(Replaced(letters + "\xE2\x80"), letters);
  EXPECT_EQ(Replaced(letters + "bc"), letters + "bc");
}

TEST(TypedText, ACharacterThatWasCutGoes) {
  const struct {
    const char *what, *text, *kept;
  } kCases[] = {
      {"none", "ab", "ab"},
      {"a whole one", "a\u00E9", "a\u00E9"},
      {"a whole one of four bytes", "a\U0001F680", "a\U0001F680"},
      {"the first byte", "a\xC3", "a"},
      {"two of three", "a\xE2\x80", "a"},
      {"three of four", "a\xF0\x9F\x9A", "a"},
      {"the replacement", "a\uFFFD", "a\uFFFD"},
      {"nothing", "", ""},
      {"nothing but a part", "\xE2\x80", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    DisplayQuery text;
    Set(text, c.text);
    DropCutCharacter(text);
    EXPECT_EQ(View(text), c.kept);
  }
}

}  // namespace
}  // namespace vela
