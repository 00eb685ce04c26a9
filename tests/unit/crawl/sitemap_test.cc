#include "indexer/crawl/sitemap.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

using Names = std::vector<std::string>;

TEST(Sitemap, ListsPagesAndSitemaps) {
  const struct {
    const char* what;
    std::string bytes;
    bool isWhole;
    Names pages;
    Names sitemaps;
  } kCases[] = {
      {"pages",
       "<?xml version='1.0'?><urlset xmlns='http://www.sitemaps.org/schemas/sitemap/0.9'>"
       "<url><loc> https://x.example/a?b=1&amp;c=2\n</loc><lastmod>2026-01-01</lastmod></url>"
       "<url><loc>https://x.example/<![CDATA[b]]></loc></url></urlset>",
       true,
       {"https://x.example/a?b=1&c=2", "https://x.example/b"},
       {}},
      {"an index of sitemaps",
       "<sitemapindex><sitemap><loc>https://x.example/1.xml.gz</loc></sitemap></sitemapindex>",
       true,
       {},
       {"https://x.example/1.xml.gz"}},
      {"pictures of pages are no pages",
       "<urlset xmlns:i='http://x.example/image'><url><loc>/a</loc>"
       "<i:image><i:loc>/a.png</i:loc></i:image></url></urlset>",
       true,
       {"/a"},
       {}},
      {"another document", "<html><body><loc>/a</loc></body></html>", true, {}, {}},
      {"lines",
       "\xEF\xBB\xBFhttps://x.example/a\r\n\n https://x.example/b ",
       true,
       {"https://x.example/a", "https://x.example/b"},
       {}},
      {"cut off: what came before",
       "<urlset><url><loc>/a</loc></url><url><loc>/b",
       false,
       {"/a"},
       {}},
      {"nothing", " \n", false, {}, {}},
      {"a document type is not read",
       "<!DOCTYPE urlset [<!ENTITY a '/x'>]><urlset><url><loc>&a;</loc></url></urlset>",
       false,
       {},
       {}},
      {"gzip",
       // printf 'https://x.example/a\n' | gzip -n9
       std::string("\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\xcb\x28\x29\x29\x28\xb6\xd2\xd7\xaf"
                   "\xd0\x4b\xad\x48\xcc\x2d\xc8\x49\xd5\x4f\xe4\x02\x00\xb2\x47\x23\x50\x14\x00"
                   "\x00\x00",
                   40),
       true,
       {"https://x.example/a"},
       {}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    Sitemap sitemap;
    EXPECT_EQ(ReadSitemap(c.bytes, sitemap), c.isWhole);
    EXPECT_EQ(sitemap.pages, c.pages);
    EXPECT_EQ(sitemap.sitemaps, c.sitemaps);
  }
}

TEST(Sitemap, KeepsItsLimits) {
  std::string lines;
  for (size_t i = 0; i < kSitemapAddressLimit + 10; ++i) lines += "/a\n";
  lines += std::string(5000, 'x');
  Sitemap sitemap;
  EXPECT_TRUE(ReadSitemap(lines, sitemap));
  EXPECT_EQ(sitemap.pages.size(), kSitemapAddressLimit);
  std::string deep;
  for (int i = 0; i < 100; ++i) deep += "<a>";
  EXPECT_FALSE(ReadSitemap(deep, sitemap));
}

}  // namespace
}  // namespace vela::indexer
