#include "indexer/collect/section_pages.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

std::string Words(int count, const std::string& word) {
  std::string text;
  for (int i = 0; i < count; ++i) text += word + " ";
  return text;
}

Page Manual() {
  Page page;
  page.facts.address = "/manual.html";
  page.facts.title = "Manual";
  page.facts.language = "en";
  page.content.description = "All of it";
  page.content.metas = {{"price", "3"}};
  page.content.links = {{"/other.html", "Other"}};
  page.content.body = {
      {"The Manual", 1, "top"}, {Words(40, "intro"), 0}, {"1. Knots \u00B6", 2, "knots"},
      {Words(40, "rope"), 0},   {"Term", 0, "term"},     {"Ropes", 3, "ropes"},
      {Words(40, "sail"), 0},   {"Deep", 4, "deep"}};
  return page;
}

TEST(SectionPages, APageIsCutAtItsHeadings) {
  Page page = Manual();
  const std::vector<SectionPage> sections = TakeSections(page, 100);
  ASSERT_EQ(page.content.body.size(), 2u);
  EXPECT_EQ(page.facts.title, "Manual");
  EXPECT_EQ(page.content.links.size(), 1u);
  ASSERT_EQ(sections.size(), 2u);
  EXPECT_EQ(sections[0].anchor, "knots");
  EXPECT_EQ(sections[0].page.facts.title, "Knots - Manual");
  EXPECT_EQ(sections[0].page.facts.address, "/manual.html");
  EXPECT_EQ(sections[0].page.facts.language, "en");
  EXPECT_EQ(sections[0].page.content.metas.size(), 1u);
  EXPECT_EQ(sections[0].page.content.description, "");
  EXPECT_TRUE(sections[0].page.content.links.empty());
  ASSERT_EQ(sections[0].page.content.body.size(), 3u);
  EXPECT_EQ(sections[0].page.content.body[2].text, "Term");
  EXPECT_EQ(sections[1].page.facts.title, "Ropes - Manual");
  ASSERT_EQ(sections[1].page.content.body.size(), 3u);  // h4 is in it
}

TEST(SectionPages, AShorterPageIsLeftWhole) {
  Page page = Manual();
  // 40 + 40 + 40, two in the first heading, "1.", "Knots", the sign, "Term", "Ropes", "Deep".
  EXPECT_TRUE(TakeSections(page, 128).empty());
  EXPECT_EQ(page.content.body.size(), 8u);
  EXPECT_EQ(TakeSections(page, 127).size(), 2u);
}

TEST(SectionPages, ASectionOfFewWordsTakesInWhatFollows) {
  Page page = Manual();
  page.content.body[3].text = Words(5, "rope");
  const std::vector<SectionPage> sections = TakeSections(page, 10);
  ASSERT_EQ(sections.size(), 1u);
  EXPECT_EQ(sections[0].anchor, "knots");
  EXPECT_EQ(sections[0].page.content.body.size(), 6u);
}

TEST(SectionPages, WhatCannotBeLedToBeginsNoSection) {
  Page page = Manual();
  page.content.body[2].anchor.clear();
  page.content.body[5].anchor = std::string(kSectionAnchorLimit + 1, 'x');
  EXPECT_TRUE(TakeSections(page, 10).empty());
  EXPECT_EQ(page.content.body.size(), 8u);
}

TEST(SectionPages, TheHeadingOfThePageBeginsNone) {
  Page page = Manual();
  page.content.body[0].headingLevel = 2;
  page.content.body[0].text = "Manual";
  EXPECT_EQ(TakeSections(page, 100).front().anchor, "knots");
  page = Manual();
  page.content.body[0].headingLevel = 2;  // "The Manual" is not what the title begins with
  EXPECT_EQ(TakeSections(page, 100).front().anchor, "top");
}

}  // namespace
}  // namespace vela::indexer
