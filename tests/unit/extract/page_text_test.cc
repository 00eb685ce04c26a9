#include "indexer/extract/page_text.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

constexpr TextStyle kPlain;
constexpr TextStyle kHeading = {2, TextShare::kContent};
constexpr TextStyle kFramed = {0, TextShare::kFrame};

// The runs in one line, headings as "<level>text".
std::string Told(PageText& text, bool withFrame = false) {
  std::vector<TextRun> runs;
  text.CopyTo(runs, withFrame);
  std::string told;
  for (const TextRun& run : runs) {
    told += (run.headingLevel == 0 ? "" : "<" + std::to_string(run.headingLevel) + ">") + run.text;
    told += '|';
  }
  return told;
}

TEST(PageText, RunsAreOfOneLevel) {
  ReadingBudget budget;
  PageText text(budget);
  text.Append(0, kPlain, "a");
  text.Append(0, kPlain, "b");
  text.Append(0, kHeading, "c");
  text.Append(0, kPlain, " \n");
  text.Append(0, kHeading, "d");
  EXPECT_EQ(Told(text), "ab|<2>c|<2>d|");
}

TEST(PageText, ABreakIsOneBlankAndNoneAtTheBeginning) {
  ReadingBudget budget;
  PageText text(budget);
  text.Break(0, TextShare::kContent);
  text.Append(0, kHeading, "a");
  text.Break(0, TextShare::kContent);
  text.Break(0, TextShare::kContent);
  text.Append(0, kHeading, "b");
  EXPECT_EQ(Told(text), "<2>a b|");
}

TEST(PageText, WhatIsTakenCanBeginAtARegion) {
  ReadingBudget budget;
  PageText text(budget);
  const TextStyle main = {.region = TextRegion::kMain};
  const TextStyle chosen = {.region = TextRegion::kChosen};
  text.Append(0, kPlain, "a");
  text.Append(0, main, "b");
  text.Append(0, chosen, "c");
  text.Append(0, main, "d");
  text.Break(0, TextShare::kContent, TextRegion::kMain);
  text.Append(0, kPlain, "e");
  text.Append(0, main, "f");
  const auto from = [&text](TextRegion region) {
    std::vector<TextRun> runs;
    text.CopyTo(runs, false, region);
    return runs.empty() ? "" : runs[0].text;
  };
  EXPECT_EQ(from(TextRegion::kPage), "abcd ef");
  EXPECT_EQ(from(TextRegion::kMain), "bcd  f");  // what was left out between parts words
  EXPECT_EQ(from(TextRegion::kChosen), "c");
}

TEST(PageText, RunsAreOfOneWeight) {
  ReadingBudget budget;
  PageText text(budget);
  text.Append(0, kPlain, "a");
  text.Append(0, {.weight = 2}, "b");
  text.Append(0, {.headingLevel = 2}, "c");
  std::vector<TextRun> runs;
  text.CopyTo(runs, false);
  ASSERT_EQ(runs.size(), 3u);
  EXPECT_EQ(runs[0].weight, kWeightOfHeading);
  EXPECT_EQ(runs[1].weight, 2);
  EXPECT_EQ(runs[1].headingLevel, 0);
  EXPECT_EQ(runs[2].weight, kWeightOfHeading);
}

TEST(PageText, StrandsEndWhereTheyWereStarted) {
  ReadingBudget budget;
  PageText text(budget);
  text.Append(0, kPlain, "a");
  const PageText::Place outer = text.Mark(0, TextShare::kContent);
  text.Append(0, kPlain, "b");
  const PageText::Place inner = text.Mark(0, TextShare::kContent);
  text.Append(0, kPlain, "c");
  // The later first: each strand is a place of its own.
  const PageText::Strand beforeOuter = text.StartStrand(outer);
  text.Append(beforeOuter, kPlain, "1");
  const PageText::Strand beforeInner = text.StartStrand(inner);
  text.Append(beforeInner, kPlain, "2");
  text.Append(beforeOuter, kPlain, "3");
  text.Append(0, kPlain, "d");
  text.Append(beforeInner, kPlain, "4");
  EXPECT_EQ(Told(text), "a13 b24 cd|");
}

TEST(PageText, TheFrameCountsWhenAsked) {
  ReadingBudget budget;
  PageText text(budget);
  text.Append(0, kFramed, "site");
  EXPECT_TRUE(text.HasText());
  EXPECT_FALSE(text.HasContent());
  text.Append(0, {1, TextShare::kHeadline}, "title");
  EXPECT_FALSE(text.HasContent());
  text.Append(0, kPlain, " ");
  EXPECT_FALSE(text.HasContent());
  text.Append(0, kPlain, "text");
  EXPECT_TRUE(text.HasContent());
  EXPECT_EQ(Told(text), "<1>title| text|");
  EXPECT_EQ(Told(text, true), "site|<1>title| text|");
}

TEST(PageText, WithoutMemoryTextIsDropped) {
  ReadingBudget budget;
  PageText text(budget);
  budget.bytesLimit = budget.bytes + 200;
  text.Append(0, kPlain, "a");
  text.Append(0, kPlain, std::string(1000, 'b'));
  text.Append(text.StartStrand(text.Mark(0, TextShare::kContent)), kPlain, std::string(1000, 'c'));
  EXPECT_EQ(budget.status, Reason::kMarkupTooLarge);
}

}  // namespace
}  // namespace vela::indexer
