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

// Composing sorts a run of marks, at a cost that grows with the square of its length.
TEST(CleanText, LimitsTheMarksOverOneLetter) {
  const auto withMarks = [](size_t pairs) {
    std::string text = "a";
    for (size_t i = 0; i < pairs; ++i) text += "\u0301\u0316";
    CleanText(text += "b");
    return text;
  };
  const std::string most = withMarks(15);
  EXPECT_EQ(most.size(), 2 + 29 * 2 + 1u);  // one mark is part of the letter
  for (const size_t pairs : {16u, 32u, 50000u}) EXPECT_EQ(withMarks(pairs), most) << pairs;
  EXPECT_LT(withMarks(14).size(), most.size());
  std::string decomposed = "\u0F73\u0F75";  // marks of two parts each, that count as one
  CleanText(decomposed);
  EXPECT_FALSE(decomposed.empty());
}

// Text is looked at several bytes at a time.
TEST(CleanText, AnyPlaceIsLikeTheOthers) {
  for (size_t length = 0; length < 40; ++length) {
    const std::string before(length, 'x');
    for (size_t more = 0; more < 20; ++more) {
      const std::string after(more, '~');
      for (const char* control : {"\x01", "\x1F", "\x7F", "\n"}) {
        for (const char* letter : {"", "\u00E9"}) {
          std::string text = before + control + after + letter;
          CleanText(text);
          EXPECT_EQ(text, before + " " + after + letter);
        }
      }
      EXPECT_TRUE(IsValidUtf8(before + "\u20AC" + after));
      EXPECT_FALSE(IsValidUtf8(before + "\x80" + after));
      EXPECT_FALSE(IsValidUtf8(before + "\u20AC" + after + "\xC3"));
    }
  }
}

TEST(CleanText, CollapsesBlanks) {
  EXPECT_EQ(CollapseBlanks("a"), "a");
  EXPECT_EQ(CollapseBlanks("a  "), "a");
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
