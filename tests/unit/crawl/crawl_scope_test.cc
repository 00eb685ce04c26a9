#include "indexer/crawl/crawl_scope.h"

#include <gtest/gtest.h>

#include "indexer/report/index_error.h"

namespace vela::indexer {
namespace {

CrawlScope::Rules RulesOf() {
  return {.base = "https://x.example/",
          .start = {"https://x.example/docs/"},
          .hosts = {"y.example:8080", "*.z.example"},
          .include = {},
          .exclude = {"private/*"},
          .endings = DefaultFileEndings()};
}

TEST(CrawlScope, HoldsTheServersThatAreNamed) {
  const CrawlScope scope(RulesOf());
  const struct {
    const char* address;
    bool holds;
    bool isNamed;
  } kCases[] = {
      {"https://x.example/a", true, true},      {"http://x.example/a", true, true},
      {"http://x.example:8080/", false, false}, {"https://www.x.example/", false, false},
      {"https://notx.example/", false, false},  {"https://x.example.evil.example/", false, false},
      {"http://y.example:8080/", true, true},   {"http://y.example/", false, false},
      {"https://a.b.z.example/", true, false},  {"https://z.example/", false, false},
      {"https://notz.example/", false, false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.address);
    const auto address = ReadWebAddress(c.address);
    ASSERT_TRUE(address.has_value());
    EXPECT_EQ(scope.HoldsServer(*address), c.holds);
    EXPECT_EQ(scope.IsNamed(address->authority), c.isNamed);
  }
}

TEST(CrawlScope, ChoosesAmongLinks) {
  CrawlScope::Rules rules = RulesOf();
  rules.include = {"docs/*", "private/*"};
  const CrawlScope scope(rules);
  const auto holds = [&](const char* address) { return scope.Holds(*ReadWebAddress(address)); };
  EXPECT_TRUE(holds("https://x.example/docs/a"));
  EXPECT_TRUE(holds("https://x.example/docs/a.html?b.css"));
  EXPECT_FALSE(holds("https://x.example/a"));
  EXPECT_FALSE(holds("https://x.example/private/a"));
  EXPECT_FALSE(holds("https://x.example/docs/a.CSS"));
  EXPECT_FALSE(holds("https://x.example/docs/a.tar.gz"));
  rules.endings[static_cast<size_t>(FileType::kText)] = {"gz"};
  EXPECT_TRUE(CrawlScope(rules).Holds(*ReadWebAddress("https://x.example/docs/a.tar.gz")));
}

TEST(CrawlScope, RefusesWhatIsNoServer) {
  CrawlScope::Rules rules = RulesOf();
  rules.hosts = {"https://x.example/"};
  EXPECT_THROW(CrawlScope{rules}, IndexError);
  rules = RulesOf();
  rules.start = {"x.example"};
  EXPECT_THROW(CrawlScope{rules}, IndexError);
}

}  // namespace
}  // namespace vela::indexer
