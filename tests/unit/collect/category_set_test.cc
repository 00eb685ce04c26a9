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
  EXPECT_EQ(CategorySet(rules, {"/", a}, "en"), "\x11\x01"s);
  EXPECT_EQ(CategorySet(rules, {"/", both}, "en"), "\xFF\x03"s);
  EXPECT_EQ(CategorySet({}, {"/", a}, "en"), "");
  EXPECT_TRUE(HasCategory("\x11\x01", 8));
  EXPECT_TRUE(HasCategory("\x11\x01", 4));
  EXPECT_FALSE(HasCategory("\x11\x01", 1));
  EXPECT_FALSE(HasCategory("\x11\x01", 9));
}

TEST(CategorySet, LanguagesAndAddressesBothHaveToFit) {
  const std::vector<CategoryRule> rules = {
      {"a", {"a*"}, {"de", "fr"}}, {"any address", {}, {"fr"}}, {"any language", {"a*"}, {}}};
  const std::vector<std::string> a = {"/a.html"};
  const std::vector<std::string> b = {"/b.html"};
  EXPECT_EQ(CategorySet(rules, {"/", a}, "fr"), "\x07"s);
  EXPECT_EQ(CategorySet(rules, {"/", a}, "de"), "\x05"s);
  EXPECT_EQ(CategorySet(rules, {"/", a}, ""), "\x04"s);
  EXPECT_EQ(CategorySet(rules, {"/", b}, "fr"), "\x02"s);
  EXPECT_EQ(CategorySet(rules, {"/", b}, "de"), "\0"s);
}

}  // namespace
}  // namespace vela::indexer
