#include "indexer/collect/recommended_pages.h"

#include <gtest/gtest.h>

#include <vector>

namespace vela::indexer {
namespace {

RecommendedRule Rule(const char* address) { return {"word", address, "line 1"}; }

TEST(RecommendedPages, AreFoundByTheAddressesOfRules) {
  const std::vector<RecommendedRule> rules = {Rule("h.html"), Rule("https://x.example/c/"),
                                              Rule("/p.html"), Rule("gone.html")};
  RecommendedPages pages(rules, "https://x.example/");
  pages.Note(std::vector<std::string>{"https://x.example/h.html"}, 0);
  pages.Note(std::vector<std::string>{"https://x.example/c/index.html"}, 40);
  pages.Note(std::vector<std::string>{"https://x.example/pretty", "https://x.example/p.html"}, 50);
  pages.Note(std::vector<std::string>{"https://x.example/other.html"}, 60);
  EXPECT_EQ(pages.OffsetOf(rules[0]), 0u);
  EXPECT_EQ(pages.OffsetOf(rules[1]), 40u);
  EXPECT_EQ(pages.OffsetOf(rules[2]), 50u);
  EXPECT_EQ(pages.OffsetOf(rules[3]), std::nullopt);
  EXPECT_EQ(pages.OffsetOf(Rule("other.html")), std::nullopt);  // only what rules name is kept
}

TEST(RecommendedPages, TheFirstPageOfAnAddressHolds) {
  const std::vector<RecommendedRule> rules = {Rule("c/")};
  RecommendedPages pages(rules, "/");
  pages.Note(std::vector<std::string>{"/c/index.html"}, 10);
  pages.Note(std::vector<std::string>{"/c/index.txt"}, 20);
  EXPECT_EQ(pages.OffsetOf(rules[0]), 10u);
}

}  // namespace
}  // namespace vela::indexer
