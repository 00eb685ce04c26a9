#include "indexer/write/recommended_writer.h"

#include <gtest/gtest.h>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

// Whose lines have 100 bytes each.
struct Table {
  support::ScratchDirectory scratch;
  IndexCharset utf8;
  PageTableWriter writer{scratch.path() / "info", scratch.path() / "data"};

  explicit Table(int pages) {
    PageEntry entry;
    entry.address = std::string(95, 'a');
    for (int i = 0; i < pages; ++i) writer.AddPage(entry);
  }
};

TEST(RecommendedWriter, WritesKeywordsAsQueriesHaveThem) {
  const support::ScratchDirectory scratch;
  const std::vector<RecommendedRule> rules = {
      {"Hours, Opening-Times!", "h.html", "line 1"},
      {"caf\u00E9", "https://x.example/c/", "line 2"},
      {"prod*", "/p.html", "line 3"},
      {"gone", "gone.html", "line 4"},
      {" , \"", "h.html", "line 5"},
      {std::string(501, 'a'), "h.html", "line 6"},
  };
  Table table(3);
  const RecommendedSizes sizes = WriteRecommended(scratch.path() / "r",
                                                  {{rules[0], 0, {}},
                                                   {rules[1], 1, {}},
                                                   {rules[2], 2, {}},
                                                   {rules[3], std::nullopt, {}},
                                                   {rules[4], 0, {}},
                                                   {rules[5], 0, {}}},
                                                  table.writer, IndexCharset(), true);
  EXPECT_EQ(ReadFile(scratch.path() / "r"),
            "hours,opening-times 0\n"
            "caf\u00E9,cafe 100\n"
            "prod* 200\n");
  EXPECT_EQ(sizes.entries, 3u);
  EXPECT_EQ(sizes.longestLine, 22u);
  ASSERT_EQ(sizes.unused.size(), 3u);
  EXPECT_EQ(sizes.unused[0].reason, Reason::kNoPageToRecommend);
  EXPECT_EQ(sizes.unused[0].where, "line 4");
  EXPECT_EQ(sizes.unused[0].subject, "gone.html");
  EXPECT_EQ(sizes.unused[1].reason, Reason::kNoKeyword);
  EXPECT_EQ(sizes.unused[2].reason, Reason::kKeywordsTooLong);
}

TEST(RecommendedWriter, TheOwnersWordsHaveLinesOfTheirOwn) {
  const support::ScratchDirectory scratch;
  const IndexCharset utf8;
  PageTableWriter table(scratch.path() / "info", scratch.path() / "data");
  PageEntry entry;
  entry.address = "/a.html";
  entry.title = "A &#38; B";
  entry.description = "Own";
  entry.image = "/a.png";
  table.AddPage(entry);  // "/a.html|A &#38; B|Own|/a.png|" and a line feed: 30 bytes
  const std::vector<RecommendedRule> rules = {
      {"title", "/a.html", "line 1", "T | \"U\""},
      {"text", "/a.html", "line 2", "", "<b>"},
      {"plain", "/a.html", "line 3"},
      {"other", "https://y.example/", "line 4", "", "Y"},
      {"again", "https://y.example/", "line 5", "", "Y"},
  };
  const RecommendedSizes sizes = WriteRecommended(scratch.path() / "r",
                                                  {{rules[0], 0, {}},
                                                   {rules[1], 0, {}},
                                                   {rules[2], 0, {}},
                                                   {rules[3], std::nullopt, "https://y.example/"},
                                                   {rules[4], std::nullopt, "https://y.example/"}},
                                                  table, utf8, true);
  EXPECT_TRUE(sizes.unused.empty());
  const PageTableWriter::Sizes written = table.Finish();
  EXPECT_EQ(written.infoBytes, 17u);
  EXPECT_EQ(ReadFile(scratch.path() / "data"),
            "/a.html|A &#38; B|Own|/a.png|\n"
            "/a.html|T &#124; &#34;U&#34;|Own|/a.png|\n"
            "/a.html|A &#38; B|&#60;b&#62;|/a.png|\n"
            "https://y.example/|https://y.example/|Y||\n");
  // The second line has 41 bytes, the third 38.
  EXPECT_EQ(ReadFile(scratch.path() / "r"), "title 30\ntext 71\nplain 0\nother 109\nagain 109\n");
}

}  // namespace
}  // namespace vela::indexer
