#include "indexer/words/stored_text.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

const IndexCharset kUtf8;

TEST(StoredText, IsCutAtAWord) {
  EXPECT_EQ(StoredText("short", 5, kUtf8), "short");
  EXPECT_EQ(StoredText("one two three", 13, kUtf8), "one two three");
  EXPECT_EQ(StoredText("one two three", 12, kUtf8), "one two\u2026");
  EXPECT_EQ(StoredText("one two three", 10, kUtf8), "one two\u2026");
  EXPECT_EQ(StoredText("tab\tand\nline", 50, kUtf8), "tab and line");
}

TEST(StoredText, IsNeverCutInsideACharacter) {
  EXPECT_EQ(StoredText("\u00E9\u00E9\u00E9\u00E9", 7, kUtf8), "\u00E9\u00E9\u2026");
  EXPECT_EQ(StoredText("\u00E9\u00E9\u00E9\u00E9", 8, kUtf8), "\u00E9\u00E9\u00E9\u00E9");
  EXPECT_EQ(StoredText("abcdefgh&&", 14, kUtf8), "abcdefgh\u2026");  // nor inside a reference
  for (size_t room = 3; room < 60; ++room) {
    const std::string stored =
        StoredText("Fran\u00E7ois & \"co\" \u20AC \U0001F600 <tag> word word", room, kUtf8);
    EXPECT_LE(stored.size(), room);
    const size_t open = stored.rfind('&');
    EXPECT_TRUE(open == stored.npos || stored.find(';', open) != stored.npos) << stored;
  }
}

TEST(StoredText, OneByteSetsGetReferences) {
  const IndexCharset latin("windows-1252");
  EXPECT_EQ(StoredText("caf\u00E9 \u20AC \u0141", latin), "caf\xE9 \x80 &#321;");
  EXPECT_EQ(StoredText("one two three", 12, latin), "one two\x85");
  const IndexCharset slavic("ISO-8859-2");
  EXPECT_EQ(StoredText("\u0141\u00F3d\u017A \u20AC", slavic), "\xA3\xF3\x64\xBC &#8364;");
}

TEST(StoredText, BetweenTagsQuotesStay) {
  EXPECT_EQ(StoredElementText("O'Brien & \"co\" | <b>", 100, kUtf8),
            "O'Brien &#38; \"co\" | &#60;b&#62;");
}

}  // namespace
}  // namespace vela::indexer
