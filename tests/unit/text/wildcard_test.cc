// wildcard_test.cc: patterns with "*" and "?".

#include "text/wildcard.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vela {
namespace {

TEST(Wildcard, Matches) {
  const struct {
    const char* what;
    std::string_view text;
    std::string_view pattern;
    bool expected;
  } cases[] = {
      {"equal", "cat", "cat", true},
      {"shorter pattern", "cart", "car", false},
      {"longer pattern", "car", "cart", false},
      {"nothing to nothing", "", "", true},
      {"nothing to a pattern", "", "a", false},
      {"text to an empty pattern", "a", "", false},
      {"a star takes any run", "anything", "*", true},
      {"a star takes no run", "", "*", true},
      {"several stars take no run", "", "***", true},
      {"a star at the end takes nothing", "ca", "ca*", true},
      {"a star at the end takes the rest", "category", "ca*", true},
      {"only from the start", "scat", "ca*", false},
      {"a star at the start", "scat", "*cat", true},
      {"a star at the start, rest missing", "cats", "*cat", false},
      {"stars around", "artist", "*art*", true},
      {"stars around, at the end", "cart", "*art*", true},
      {"stars around, missing", "card", "*art*", false},
      {"a star inside", "colour", "co*r", true},
      {"a star inside takes nothing", "cor", "co*r", true},
      {"backtracks behind the last star", "aabab", "*ab", true},
      {"backtracks several times", "mississippi", "m*issip*i", true},
      {"backtracks in vain", "mississippi", "m*issix*i", false},
      {"the second star goes on behind the first", "axbxc", "a*b*c", true},
      {"in order only", "axcxb", "a*b*c", false},
      {"a question mark is one character: cat", "cat", "c?t", true},
      {"a question mark is one character: cut", "cut", "c?t", true},
      {"a question mark is not two", "cart", "c?t", false},
      {"a question mark is not none", "ct", "c?t", false},
      {"a question mark at the end", "cat", "cat?", false},
      {"question marks after a star", "cat", "*??", true},
      {"question marks after a star, too many", "c", "*??", false},
      {"a question mark is one byte", "\xC3\xA9", "?", false},
      {"two bytes", "\xC3\xA9", "??", true},
      {"a star before a question mark", "b", "*?", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(MatchesWildcard(c.text, c.pattern, false), c.expected);
    EXPECT_EQ(MatchesWildcard(c.text, c.pattern, true), c.expected);
  }
}

TEST(Wildcard, CaseMattersUnlessFolded) {
  EXPECT_FALSE(MatchesWildcard("cat", "Ca*", false));
  EXPECT_TRUE(MatchesWildcard("cat", "Ca*", true));
  EXPECT_TRUE(MatchesWildcard("CAT", "c?t", true));
  EXPECT_FALSE(MatchesWildcard("CAT", "c?t", false));
}

TEST(Wildcard, OnlyAsciiLettersAreFolded) {
  EXPECT_FALSE(MatchesWildcard("\xC9t", "\xE9*", true));
  EXPECT_FALSE(MatchesWildcard("\xC3\x89t", "\xC3\xA9*", true));
  EXPECT_FALSE(MatchesWildcard("[", "{*", true));
  EXPECT_FALSE(MatchesWildcard("@", "`", true));
}

TEST(Wildcard, AHostilePatternEnds) {
  const std::string text(2000, 'a');
  std::string pattern;
  for (int i = 0; i < 500; ++i) pattern += "*a";
  EXPECT_TRUE(MatchesWildcard(text, pattern + "*", false));
  EXPECT_FALSE(MatchesWildcard(text, pattern + "*b", false));
}

TEST(Wildcard, HasWildcard) {
  EXPECT_FALSE(HasWildcard(""));
  EXPECT_FALSE(HasWildcard("cat"));
  EXPECT_TRUE(HasWildcard("ca*"));
  EXPECT_TRUE(HasWildcard("?at"));
}

}  // namespace
}  // namespace vela
