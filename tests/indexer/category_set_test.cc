#include "indexer/category_set.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

using namespace std::string_literals;

TEST(CategorySet, PatternsFitAddresses) {
  const struct {
    const char* what;
    const char* pattern;
    bool fits;
  } kCases[] = {
      {"behind the base", "news/*", true},
      {"all of it, not a part", "news/", false},
      {"one character", "news/?.html", true},
      {"case does not count", "NEWS/A.html", true},
      {"the whole path", "/docs/news/*", true},
      {"a path that is not whole", "/news/*", false},
      {"the whole address", "https://x.example/docs/*", true},
      {"another host", "https://y.example/*", false},
      {"everything", "*", true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(FitsAddressPattern("https://x.example/docs/news/a.html", "https://x.example/docs/",
                                 c.pattern),
              c.fits);
  }
  EXPECT_TRUE(FitsAddressPattern("/docs/a.html", "/docs/", "a.html"));
  EXPECT_FALSE(FitsAddressPattern("/other/a.html", "/docs/", "*"));
}

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
  EXPECT_EQ(CategoryBytes(8), 1u);
  EXPECT_EQ(CategoryBytes(9), 2u);
}

}  // namespace
}  // namespace vela::indexer
