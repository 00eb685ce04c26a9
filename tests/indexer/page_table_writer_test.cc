#include "indexer/page_table_writer.h"

#include <gtest/gtest.h>

#include "indexer_site.h"

namespace vela::indexer {
namespace {

using namespace std::string_literals;

TEST(PageTable, WritesRecordsAndLines) {
  const support::ScratchDirectory scratch;
  PageTableWriter writer(scratch.path() / "info", scratch.path() / "data");
  writer.AddPage({"/a.html", "A & B", "", 0x01020304, 0x11223344, FileType::kHtml});
  writer.AddPage({"/b.txt", "pipe | \"quote\"", "it's <b>", uint64_t{1} << 33, 0, FileType::kText});
  writer.AddPage({"/c", "", "", 0, int64_t{1} << 31, FileType::kHtml});
  const PageTableWriter::Sizes sizes = writer.Finish();
  // The first line has 21 bytes; the second "/b.txt|" 7, the title 27, "|" 1, the description 20
  // and "||" with the line feed 3, that is 58; the third 7.
  EXPECT_EQ(ReadFile(scratch.path() / "data"),
            "/a.html|A &#38; B|||\n"
            "/b.txt|pipe &#124; &#34;quote&#34;|it&#39;s &#60;b&#62;||\n"
            "/c||||\n");
  EXPECT_EQ(ReadFile(scratch.path() / "info"),
            "\x11\0"
            "\0\0\0\0\0"
            "\x04\x03\x02\x01"
            "\x44\x33\x22\x11"
            "\0\0"
            "\x11\0"
            "\x15\0\0\0\0"
            "\xFF\xFF\xFF\xFF"
            "\0\0\0\0"
            "\0\x01"
            "\x11\0"
            "\x4F\0\0\0\0"
            "\0\0\0\0"
            "\0\0\0\0"
            "\0\0"s);
  EXPECT_EQ(sizes.infoBytes, 51u);
  EXPECT_EQ(sizes.dataBytes, 86u);
}

TEST(PageTable, StoredTextIsCutAtAWord) {
  EXPECT_EQ(StoredText("short", 5), "short");
  EXPECT_EQ(StoredText("one two three", 13), "one two three");
  EXPECT_EQ(StoredText("one two three", 12), "one two\u2026");
  EXPECT_EQ(StoredText("one two three", 10), "one two\u2026");
  EXPECT_EQ(StoredText("tab\tand\nline", 50), "tab and line");
}

TEST(PageTable, StoredTextIsNeverCutInsideACharacter) {
  EXPECT_EQ(StoredText("\u00E9\u00E9\u00E9\u00E9", 7), "\u00E9\u00E9\u2026");
  EXPECT_EQ(StoredText("\u00E9\u00E9\u00E9\u00E9", 8), "\u00E9\u00E9\u00E9\u00E9");
  EXPECT_EQ(StoredText("abcdefgh&&", 14), "abcdefgh\u2026");  // nor inside a reference
  for (size_t room = 3; room < 60; ++room) {
    const std::string stored =
        StoredText("Fran\u00E7ois & \"co\" \u20AC \U0001F600 <tag> word word", room);
    EXPECT_LE(stored.size(), room);
    const size_t open = stored.rfind('&');
    EXPECT_TRUE(open == stored.npos || stored.find(';', open) != stored.npos) << stored;
  }
}

TEST(PageTable, TheLongestLineIsRead) {
  const support::ScratchDirectory scratch;
  PageTableWriter writer(scratch.path() / "info", scratch.path() / "data");
  const std::string marks(10000, '&');
  writer.AddPage({std::string(2083, 'a'), marks, marks, 1, 1, FileType::kHtml});
  EXPECT_LE(writer.Finish().dataBytes, 7260u);
}

}  // namespace
}  // namespace vela::indexer
