#include "indexer/config/recommended_rules.h"

#include <gtest/gtest.h>

#include "indexer/report/index_error.h"

namespace vela::indexer {
namespace {

TEST(RecommendedRules, ReadsTheOwnersLines) {
  const std::vector<RecommendedRule> rules = ReadRecommendedRules(
      "\xEF\xBB\xBF# hours\n\n hours, opening times =  h.html \r\nx=y=z", "r.txt");
  ASSERT_EQ(rules.size(), 2u);
  EXPECT_EQ(rules[0].keywords, "hours, opening times");
  EXPECT_EQ(rules[0].address, "h.html");
  EXPECT_EQ(rules[0].where, "r.txt, line 3");
  EXPECT_EQ(rules[1].keywords, "x");
  EXPECT_EQ(rules[1].address, "y=z");
  for (const char* text : {"hours\n", "= h.html\n", "hours =\n", "caf\xE9 = a.html\n"}) {
    SCOPED_TRACE(text);
    EXPECT_THROW(ReadRecommendedRules(text, "r.txt"), IndexError);
  }
}

}  // namespace
}  // namespace vela::indexer
