#include "indexer/collect/site_rules.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(SiteRules, TheFirstBoostThatFitsHolds) {
  SiteConfig config;
  config.boosts = {{{"a*"}, 20, "line 1"}, {{"*b"}, 5, "line 2"}};
  SiteRules rules(config);
  const auto boostOf = [&](const std::string& address) {
    const std::vector<std::string> all = {address};
    return rules.Apply({.base = "/", .all = all}, "en").boost;
  };
  EXPECT_EQ(boostOf("/ab"), 20);
  EXPECT_EQ(boostOf("/b"), 5);
  EXPECT_EQ(boostOf("/c"), 0);
}

TEST(SiteRules, TellsOfTheRulesThatFitNoPage) {
  SiteConfig config;
  config.categories = {{"News", {"news/*"}}, {"None", {"none/*"}}};
  config.boosts = {{{"news/*"}, 20, "line 1"}, {{"*.html"}, 5, "line 2"}, {{"x*"}, 5, "line 3"}};
  SiteRules rules(config);
  EXPECT_EQ(rules.Unused().size(), 5u);
  const std::vector<std::string> addresses = {"/news/a.html"};
  EXPECT_EQ(rules.Apply({.base = "/", .all = addresses}, "en").categories, "\x01");
  const std::vector<Finding> unused = rules.Unused();
  ASSERT_EQ(unused.size(), 2u);
  EXPECT_EQ(unused[0].reason, Reason::kUnusedCategory);
  EXPECT_EQ(unused[0].subject, "None");
  EXPECT_EQ(unused[1].reason, Reason::kUnusedBoost);
  EXPECT_EQ(unused[1].where, "line 3");  // the second fits, if behind the first
}

}  // namespace
}  // namespace vela::indexer
