#include "indexer/collect/category_set.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

using namespace std::string_literals;

TEST(CategorySet, CategoryEightIsTheFirstBitOfTheSecondByte) {
  std::vector<CategoryRule> rules(10);
  for (size_t i = 0; i < rules.size(); ++i) {
    rules[i] = {"c" + std::to_string(i), {i % 4 == 0 ? "a*" : "b*", "always-no"}};
  }
  const std::vector<std::string> a = {"/a.html"};
  const std::vector<std::string> both = {"/a.html", "/b.html"};
  // Categories 0, 4 and 8: 1 + 16, and 1.
  EXPECT_EQ(CategorySet(rules, {"/", a}), "\x11\x01"s);
  EXPECT_EQ(CategorySet(rules, {"/", both}), "\xFF\x03"s);
  EXPECT_EQ(CategorySet({}, {"/", a}), "");
  EXPECT_TRUE(HasCategory("\x11\x01", 8));
  EXPECT_TRUE(HasCategory("\x11\x01", 4));
  EXPECT_FALSE(HasCategory("\x11\x01", 1));
  EXPECT_FALSE(HasCategory("\x11\x01", 9));
}

}  // namespace
}  // namespace vela::indexer
