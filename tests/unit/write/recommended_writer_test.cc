#include "indexer/write/recommended_writer.h"

#include <gtest/gtest.h>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

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
  RecommendedPages pages(rules, "https://x.example/");
  pages.Note(std::vector<std::string>{"https://x.example/h.html"}, 0);
  pages.Note(std::vector<std::string>{"https://x.example/c/index.html"}, 40);
  pages.Note(std::vector<std::string>{"https://x.example/p.html"}, 1234567);
  pages.Note(std::vector<std::string>{"https://x.example/other.html"}, 5);
  const RecommendedSizes sizes =
      WriteRecommended(scratch.path() / "r", rules, pages, IndexCharset());
  EXPECT_EQ(ReadFile(scratch.path() / "r"),
            "hours,opening-times 0\n"
            "caf\u00E9,cafe 40\n"
            "prod* 1234567\n");
  EXPECT_EQ(sizes.entries, 3u);
  EXPECT_EQ(sizes.longestLine, 22u);
  ASSERT_EQ(sizes.unused.size(), 3u);
  EXPECT_EQ(sizes.unused[0].reason, Reason::kNoPageToRecommend);
  EXPECT_EQ(sizes.unused[0].where, "line 4");
  EXPECT_EQ(sizes.unused[0].subject, "gone.html");
  EXPECT_EQ(sizes.unused[1].reason, Reason::kNoKeyword);
  EXPECT_EQ(sizes.unused[2].reason, Reason::kKeywordsTooLong);
}

TEST(RecommendedWriter, AddressesAreWrittenAsPeopleWriteThem) {
  const support::ScratchDirectory scratch;
  const std::vector<RecommendedRule> rules = {
      {"list", "notes/Preis liste.txt", "line 1"},
      {"about", "https://x.example/\u00DCber.html#top", "line 2"},
      {"encoded", "%c3%9cber.html", "line 3"},
  };
  RecommendedPages pages(rules, "https://x.example/");
  pages.Note(std::vector<std::string>{"https://x.example/notes/Preis%20liste.txt"}, 7);
  pages.Note(std::vector<std::string>{"https://x.example/%C3%9Cber.html"}, 9);
  const RecommendedSizes sizes =
      WriteRecommended(scratch.path() / "r", rules, pages, IndexCharset());
  EXPECT_EQ(ReadFile(scratch.path() / "r"), "list 7\nabout 9\nencoded 9\n");
  EXPECT_TRUE(sizes.unused.empty());
}

}  // namespace
}  // namespace vela::indexer
