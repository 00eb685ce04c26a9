#include "indexer/crawl/page_links.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(PageLinks, AreThoseThatLeadToPages) {
  const struct {
    const char* what;
    const char* html;
    std::vector<std::string> links;
  } kCases[] = {
      {"anchors", "<a href=b.html>b</a><A HREF='/c?d&amp;e'>", {"/x/b.html", "/c?d&e"}},
      {"places on the page", "<a href='#top'><a href=''>", {}},
      {"other schemes", "<a href='mailto:a@b'><a href='javascript:x()'>", {}},
      {"areas and frames",
       "<area href=a><iframe src=b></iframe><frame src=c>",
       {"/x/a", "/x/b", "/x/c"}},
      {"links of the head",
       "<link rel=next href=a><link rel='PREV' href=b><link rel=canonical href=c>"
       "<link rel=alternate hreflang=de href=d>",
       {"/x/a", "/x/b", "/x/c", "/x/d"}},
      {"not what is beside pages",
       "<link rel=stylesheet href=a><link rel='alternate stylesheet' href=b>"
       "<link rel=alternate type=application/rss+xml href=c><link rel=icon href=d>",
       {}},
      {"a refresh", "<meta http-equiv=Refresh content=\"3; URL = 'a' \">", {"/x/a"}},
      {"of the page itself", "<meta http-equiv=refresh content=30>", {}},
      {"nofollow", "<a rel='external nofollow' href=a><a href=b>", {"/x/b"}},
      {"nofollow of the page", "<a href=a><meta name=ROBOTS content='index, nofollow'>", {}},
      {"of this crawler", "<a href=a><meta name=velabot content=none>", {}},
      {"of another", "<a href=a><meta name=otherbot content=nofollow>", {"/x/a"}},
      {"the base", "<base href='/y/'><base href='/z/'><a href=a>", {"/y/a"}},
      {"what a script writes",
       "<script>\"<a href=a>\"</script><!-- <a href=b> --><a href=c>",
       {"/x/c"}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    ReadingBudget budget;
    std::vector<std::string> expected;
    for (const std::string& link : c.links) expected.push_back("https://x.example" + link);
    EXPECT_EQ(LinksOf(c.html, "https://x.example/x/p.html", budget), expected);
  }
}

TEST(PageLinks, AreNoMoreThanTheLimit) {
  std::string html;
  for (size_t i = 0; i < kLinkLimit + 5; ++i) html += "<a href=a>";
  ReadingBudget budget;
  EXPECT_EQ(LinksOf(html, "http://x.example/", budget).size(), kLinkLimit);
}

}  // namespace
}  // namespace vela::indexer
