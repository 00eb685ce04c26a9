#include "indexer/extract/declared_facts.h"

#include <gtest/gtest.h>

#include "indexer/extract/html_page.h"

namespace vela::indexer {
namespace {

PageContent PageOf(const std::string& html) {
  ReadingBudget budget;
  PageContent page;
  EXPECT_EQ(ParseHtmlPage(html, budget, page), Reason::kNone);
  AddFacts(page);
  return page;
}

TEST(DeclaredFacts, TheFirstOfTheirNamesCounts) {
  PageContent page;
  page.metas = {{"json-ld:author", "J"}, {"dc.creator", "D"}, {"og:image", "i.png"}};
  EXPECT_EQ(FactOf(page, PageFact::kAuthor), "D");
  EXPECT_EQ(FactOf(page, PageFact::kImage), "i.png");
  EXPECT_EQ(FactOf(page, PageFact::kSection), "");
  page.metas.emplace_back("author", "A");
  EXPECT_EQ(FactOf(page, PageFact::kAuthor), "A");
}

TEST(DeclaredFacts, DescriptionsOfEveryKind) {
  const struct {
    const char* html;
    const char* expected;
  } kCases[] = {
      {"<meta property=og:description content=O><meta name=description content=D>x", "D"},
      {"<meta name=dc.description content=C><meta property=og:description content=O>x", "O"},
      {"<meta name=DCTERMS.description content=C>x", "C"},
      {"<meta name=twitter:description content=T>x", "T"},
      {"<script type=application/ld+json>{\"@type\":\"Event\",\"description\":\"J\"}</script>x",
       "J"},
      {"<script type=application/ld+json>{\"@type\":\"WebSite\",\"description\":\"J\"}</script>x",
       ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.html);
    EXPECT_EQ(PageOf(c.html).description, c.expected);
  }
}

TEST(DeclaredFacts, AreMetaElementsForTheOwner) {
  const PageContent page = PageOf(
      "<meta property=article:section content=Sport><meta name=keywords content='a, b'>"
      "<script type=application/ld+json>{\"@type\":\"NewsArticle\",\"author\":{\"name\":\"Ann\"},"
      "\"datePublished\":\"2026-03-05\",\"offers\":{\"price\":\"4.50\"}}</script>x");
  EXPECT_EQ(MetaContent(page, "page:author"), "Ann");
  EXPECT_EQ(MetaContent(page, "page:section"), "Sport");
  EXPECT_EQ(MetaContent(page, "page:keywords"), "a, b");
  EXPECT_EQ(MetaContent(page, "page:published"), "2026-03-05");
  EXPECT_EQ(MetaContent(page, "page:price"), "4.50");
  EXPECT_EQ(MetaContent(page, "page:type"), "NewsArticle");
  EXPECT_EQ(MetaContent(page, "page:modified"), "");
}

}  // namespace
}  // namespace vela::indexer
