#include "indexer/collect/equal_pages.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

const std::string kText(200, 'x');

Page PageOf(const std::string& path, const std::string& text, const std::string& title = "T") {
  Page page;
  page.content.title = title;
  page.content.body = {{text, 0}};
  page.facts.path = path;
  page.facts.fileType = path.ends_with(".txt") ? FileType::kText : FileType::kHtml;
  return page;
}

std::optional<uint32_t> EqualTo(EqualPages& pages, const Page& page, uint32_t number) {
  return pages.EqualTo(PrintsOf(page), page.facts.fileType, number);
}

TEST(EqualPages, ACopyIsToldByTheNumberOfTheFirst) {
  EqualPages pages;
  EXPECT_EQ(EqualTo(pages, PageOf("a.html", kText), 0), std::nullopt);
  EXPECT_EQ(EqualTo(pages, PageOf("b/c.html", " " + kText + "  "), 1), 0u);
  EXPECT_EQ(EqualTo(pages, PageOf("d.html", kText, "Another title"), 1), std::nullopt);
  EXPECT_EQ(EqualTo(pages, PageOf("e.html", kText + " more"), 2), std::nullopt);
  Page described = PageOf("f.html", kText);
  described.content.metas = {{"price", "4"}};
  EXPECT_EQ(EqualTo(pages, described, 3), std::nullopt);
  described.content.metas = {{"price", "5"}};
  EXPECT_EQ(EqualTo(pages, described, 4), std::nullopt);
  described.content.description = "D";
  EXPECT_EQ(EqualTo(pages, described, 5), std::nullopt);
  EXPECT_EQ(EqualTo(pages, described, 6), 5u);
}

TEST(EqualPages, LittleTextMayBeTheSameByChance) {
  EqualPages pages;
  EXPECT_EQ(EqualTo(pages, PageOf("a.html", std::string(199, 'x')), 0), std::nullopt);
  EXPECT_EQ(EqualTo(pages, PageOf("b.html", std::string(199, 'x')), 1), std::nullopt);
}

TEST(EqualPages, ATextFileGivesWayToThePageMadeOfIt) {
  EqualPages pages;
  EXPECT_EQ(EqualTo(pages, PageOf("other.html", "y" + kText), 0), std::nullopt);
  EXPECT_EQ(EqualTo(pages, PageOf("man/a.html", kText, "The title of the page"), 1), std::nullopt);
  EXPECT_EQ(EqualTo(pages, PageOf("man/a.txt", kText, "The first line"), 2), 1u);
  EXPECT_EQ(EqualTo(pages, PageOf("man/b.txt", kText, "The first line"), 2), std::nullopt);
}

}  // namespace
}  // namespace vela::indexer
