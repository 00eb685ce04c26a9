#include "indexer/crawl/robots.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(Robots, DecidesByTheLongestPatternOfItsGroup) {
  const struct {
    const char* what;
    const char* robots;
    const char* path;
    bool allowed;
  } kCases[] = {
      {"no rules", "", "/a", true},
      {"a group for all", "User-agent: *\nDisallow: /a", "/a/b", false},
      {"what does not begin so", "User-agent: *\nDisallow: /a", "/b/a", true},
      {"its own group, and not that for all",
       "User-agent: *\nDisallow: /\n\nUser-agent: velabot\nDisallow: /x", "/a", true},
      {"its own group without rules",
       "User-agent: *\nDisallow: /\nUser-agent: velabot\nDisallow:", "/a", true},
      {"several groups of its own are one",
       "User-agent: velabot\nDisallow: /a\nUser-agent: other\nDisallow: /\n"
       "User-agent: VelaBot/1.0\nDisallow: /b",
       "/b", false},
      {"a group of several names", "User-agent: other\nuser-agent : VELABOT\ndisallow : /a", "/a",
       false},
      {"another crawler whose name begins so", "User-agent: velabot-image\nDisallow: /", "/a",
       true},
      {"the longer pattern", "User-agent: *\nDisallow: /a\nAllow: /a/b", "/a/b/c", true},
      {"in any order", "User-agent: *\nAllow: /a/b\nDisallow: /a", "/a/c", false},
      {"of two as long the one that allows", "User-agent: *\nDisallow: /a\nAllow: /a", "/a", true},
      {"a star is any run", "User-agent: *\nDisallow: /*.pdf", "/x/y.pdf?z", false},
      {"and an empty one", "User-agent: *\nDisallow: /a*b", "/ab", false},
      {"tried at each place", "User-agent: *\nDisallow: /*ab*ac$", "/abaaabacac", false},
      {"a dollar is the end", "User-agent: *\nDisallow: /*.php$", "/a.php?x", true},
      {"at the end only", "User-agent: *\nDisallow: /*.php$", "/a.php", false},
      {"a dollar elsewhere is a sign", "User-agent: *\nDisallow: /a$b", "/a$b", false},
      {"codes of plain characters are those", "User-agent: *\nDisallow: /%61", "/a", false},
      {"other characters are codes", "User-agent: *\nDisallow: /\u00FC", "/%C3%BC", false},
      {"an escaped star is no run", "User-agent: *\nDisallow: /a%2Ab", "/axb", true},
      {"a star of an address is that code", "User-agent: *\nDisallow: /a%2Ab", "/a*b", false},
      {"the query counts", "User-agent: *\nDisallow: /*?sort=", "/a?sort=b", false},
      {"case counts", "User-agent: *\nDisallow: /A", "/a", true},
      {"remarks do not", "User-agent: * # all\nDisallow: /a # b", "/a", false},
      {"nor do lines that mean nothing", "\xEF\xBB\xBFUser-agent: *\nNonsense\n: x\nDisallow: /a",
       "/a", false},
      {"other line ends", "User-agent: *\rDisallow: /a\r\nDisallow: /b", "/b", false},
      {"rules before any group mean nobody", "Disallow: /a\nUser-agent: *\nDisallow: /b", "/a",
       true},
      {"its own address", "User-agent: *\nDisallow: /", "/robots.txt", true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Allows(ParseRobots(c.robots), c.path), c.allowed);
  }
}

TEST(Robots, AServerThatCannotSayAllowsNothing) {
  RobotsRules robots;
  robots.refusesAll = true;
  EXPECT_FALSE(Allows(robots, "/"));
  EXPECT_TRUE(Allows(robots, "/robots.txt"));
}

TEST(Robots, ReadsDelayAndSitemaps) {
  const RobotsRules robots = ParseRobots(
      "Sitemap: https://x.example/a.xml\nUser-agent: *\nCrawl-delay: 9\n"
      "User-agent: velabot\nCrawl-delay: 0.5\nsitemap:/b.xml");
  EXPECT_EQ(robots.delay, 0.5);
  EXPECT_EQ(robots.sitemaps, (std::vector<std::string>{"https://x.example/a.xml", "/b.xml"}));
  EXPECT_EQ(ParseRobots("User-agent: *\nCrawl-delay: 100000").delay, 120);
  EXPECT_EQ(ParseRobots("User-agent: *\nCrawl-delay: -1").delay, 0);
  EXPECT_EQ(ParseRobots("User-agent: *\nCrawl-delay: nan").delay, 0);
}

TEST(Robots, ReadsNoMoreThanItsLimit) {
  std::string text = "User-agent: *\n";
  text.append(kRobotsBytesLimit - text.size(), '#');
  text += "\nDisallow: /";
  EXPECT_TRUE(Allows(ParseRobots(text), "/a"));
}

TEST(Robots, ReadsWhatAnswersAsk) {
  const struct {
    const char* what;
    const char* fields;
    bool noIndex;
    bool noFollow;
  } kCases[] = {
      {"nothing", "", false, false},
      {"one word", "noindex", true, false},
      {"a list", "max-snippet: 20, NoFollow ,noindex", true, true},
      {"none is both", "none", true, true},
      {"for this crawler", "velabot: noindex", true, false},
      {"for another", "otherbot: noindex, nofollow", false, false},
      {"for another, then for this one", "otherbot: noindex, velabot: nofollow", false, true},
      {"a field of its own is for all again", "otherbot: noindex\nnofollow", false, true},
      {"a date has colons", "unavailable_after: 25 Jun 2026 15:00:00 PST, noindex", true, false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    const PageRobots robots = ReadRobotsTag(c.fields);
    EXPECT_EQ(robots.noIndex, c.noIndex);
    EXPECT_EQ(robots.noFollow, c.noFollow);
  }
}

}  // namespace
}  // namespace vela::indexer
