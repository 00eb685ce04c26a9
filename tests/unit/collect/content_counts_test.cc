#include "indexer/collect/content_counts.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(ContentCounts, CountsPagesAndTheirParts) {
  ContentCounts counts;
  CountContent({.excluded = 3}, counts);
  CountContent({}, counts);
  CountContent({.excluded = 1, .isChosen = true}, counts);
  EXPECT_EQ(counts.excluded, 4u);
  EXPECT_EQ(counts.excludingPages, 2u);
  EXPECT_EQ(counts.chosenPages, 1u);
}

TEST(ContentCounts, TellsWhatHadNoUse) {
  SiteConfig config;
  config.contentRules = {{.where = "x.toml, line 1"}, {.where = "x.toml, line 5"}};
  config.selectors = {{".a", ""}, {".b", "x.toml, line 5"}, {".c", "x.toml, line 5"}};
  ContentCounts counts;
  EXPECT_EQ(UnusedContentRules(config, counts).size(), 5u);
  CountContent({.rule = 1, .selectors = {0, 2}}, counts);
  const std::vector<Finding> unused = UnusedContentRules(config, counts);
  ASSERT_EQ(unused.size(), 2u);
  EXPECT_EQ(FindingText(unused[0]), "x.toml, line 5: this [[content]] holds for no page");
  EXPECT_EQ(FindingText(unused[1]),
            "x.toml, line 5: the selector \".b\" fits nothing that is content otherwise");
  CountContent({.rule = 2, .selectors = {1}}, counts);
  EXPECT_TRUE(UnusedContentRules(config, counts).empty());
}

}  // namespace
}  // namespace vela::indexer
