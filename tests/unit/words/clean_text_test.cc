#include "indexer/words/clean_text.h"

#include <gtest/gtest.h>

#include <string>

namespace vela::indexer {
namespace {

TEST(CleanText, CleansText) {
  const struct {
    const char* what;
    std::string text, expected;
  } kCases[] = {
      {"line ends and tabs are blanks",
       "a\tb\r\nc\x7F"
       "d",
       "a b  c d"},
      {"blanks of every width", "a\u00A0b\u2003c\u3000d\u202Fe", "a b c d e"},
      {"a soft hyphen vanishes", "in\u00ADdex", "index"},
      {"a place to break vanishes", "long\u200Bname", "longname"},
      {"hyphens of Unicode", "e\u2010mail e\u2011mail", "e-mail e-mail"},
      {"no characters",
       "a\uFFFE"
       "b\uFFFF"
       "c",
       "abc"},
      {"a dash stays", "1\u20132", "1\u20132"},
      {"composed characters", "Cafe\u0301 u\u0308ber", "Caf\u00E9 \u00FCber"},
      {"a mark of the writing direction vanishes", "a\u200Fb", "ab"},
      {"a joiner inside a word stays", "\u0645\u06CC\u200C\u062E", "\u0645\u06CC\u200C\u062E"},
      {"damaged bytes",
       "a\xFF"
       "b",
       "a\uFFFDb"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    std::string text = c.text;
    CleanText(text);
    EXPECT_EQ(text.size(), c.expected.size());
    EXPECT_EQ(text, c.expected);
  }
}

TEST(CleanText, CollapsesBlanks) {
  EXPECT_EQ(CollapseBlanks("  a   b c "), "a b c");
  EXPECT_EQ(CollapseBlanks("   "), "");
  EXPECT_EQ(CollapseBlanks(""), "");
}

TEST(CleanText, TellsValidUtf8) {
  EXPECT_TRUE(IsValidUtf8(""));
  EXPECT_TRUE(IsValidUtf8("a\u00E9\u20AC\U0001F600"));
  EXPECT_FALSE(IsValidUtf8("\xC3"));
  EXPECT_FALSE(IsValidUtf8("a\x80"));
  EXPECT_FALSE(IsValidUtf8("\xC0\x80"));          // longer than it need be
  EXPECT_FALSE(IsValidUtf8("\xED\xA0\x80"));      // a surrogate
  EXPECT_FALSE(IsValidUtf8("\xF4\x90\x80\x80"));  // beyond the last character
}

}  // namespace
}  // namespace vela::indexer
