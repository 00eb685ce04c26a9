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

TEST(EqualPages, ACopyIsRepeated) {
  EqualPages pages;
  EXPECT_FALSE(pages.IsRepeated(PageOf("a.html", kText)));
  EXPECT_TRUE(pages.IsRepeated(PageOf("b/c.html", " " + kText + "  ")));
  EXPECT_FALSE(pages.IsRepeated(PageOf("d.html", kText, "Another title")));
  EXPECT_FALSE(pages.IsRepeated(PageOf("e.html", kText + " more")));
  Page described = PageOf("f.html", kText);
  described.content.metas = {{"price", "4"}};
  EXPECT_FALSE(pages.IsRepeated(described));
  described.content.metas = {{"price", "5"}};
  EXPECT_FALSE(pages.IsRepeated(described));
  described.content.description = "D";
  EXPECT_FALSE(pages.IsRepeated(described));
  EXPECT_TRUE(pages.IsRepeated(described));
}

TEST(EqualPages, LittleTextMayBeTheSameByChance) {
  EqualPages pages;
  EXPECT_FALSE(pages.IsRepeated(PageOf("a.html", std::string(199, 'x'))));
  EXPECT_FALSE(pages.IsRepeated(PageOf("b.html", std::string(199, 'x'))));
}

TEST(EqualPages, ATextFileGivesWayToThePageMadeOfIt) {
  EqualPages pages;
  EXPECT_FALSE(pages.IsRepeated(PageOf("man/a.html", kText, "The title of the page")));
  EXPECT_TRUE(pages.IsRepeated(PageOf("man/a.txt", kText, "The first line")));
  EXPECT_FALSE(pages.IsRepeated(PageOf("man/b.txt", kText, "The first line")));
}

}  // namespace
}  // namespace vela::indexer
