#include "indexer/write/recommended_writer.h"

#include <gtest/gtest.h>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

// Whose lines have 100 bytes each.
struct Table {
  support::ScratchDirectory scratch;
  IndexCharset utf8;
  PageTableWriter writer{scratch.path() / "info", scratch.path() / "data", utf8};

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
  const Table table(3);
  const RecommendedSizes sizes = WriteRecommended(scratch.path() / "r",
                                                  {{rules[0], 0},
                                                   {rules[1], 1},
                                                   {rules[2], 2},
                                                   {rules[3], std::nullopt},
                                                   {rules[4], 0},
                                                   {rules[5], 0}},
                                                  table.writer, IndexCharset());
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

}  // namespace
}  // namespace vela::indexer
