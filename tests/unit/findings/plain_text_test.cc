#include "inspector/findings/plain_text.h"

#include <gtest/gtest.h>

namespace vela::inspector {
namespace {

TEST(PlainText, KeepsWhatSteersATerminalAway) {
  EXPECT_EQ(Printable("caf\xC3\xA9"), "caf\xC3\xA9");
  EXPECT_EQ(Printable("\x1B[2J"), "?[2J");
  EXPECT_EQ(Printable("\xC2\x9B"
                      "2J"),
            "?2J");  // U+009B begins a command, too
  EXPECT_EQ(Printable("a\xFF"), "a?");
}

TEST(PlainText, CutsBetweenCharacters) {
  EXPECT_EQ(Quoted("abc", 3), "\"abc\"");
  EXPECT_EQ(Quoted("abcd", 3), "\"abc...\"");
  EXPECT_EQ(Quoted("ab\xC3\xA9", 3), "\"ab...\"");
  EXPECT_EQ(Quoted("\xC3\xA9", 1), "\"...\"");
}

TEST(PlainText, Numbers) {
  EXPECT_EQ(CountOfText(1, "page", "pages"), "1 page");
  EXPECT_EQ(CountOfText(1000, "page", "pages"), "1,000 pages");
}

TEST(PlainText, Dates) {
  EXPECT_EQ(DateText(0), "none");
  EXPECT_EQ(DateText(1709164800), "2024-02-29");
  EXPECT_EQ(DateText(-86400), "1969-12-31");
}

}  // namespace
}  // namespace vela::inspector
