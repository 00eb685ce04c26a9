#include "indexer/collect/word_weight.h"

#include <gtest/gtest.h>

#include "format/word_weight.h"

namespace vela::indexer {
namespace {

WeightContext Page() {
  return {.mass = 100, .pageWords = 300, .averageWords = 300, .linkShare = 0};
}

Posting Occurs(uint8_t body, uint8_t zones = 0) {
  Posting posting;
  posting.body = body;
  posting.zones = zones;
  posting.token = 1000;  // not at the beginning
  return posting;
}

uint32_t Weight(const Posting& posting, const WeightContext& context) {
  return WeightOf(WordWeight(posting, context));
}

TEST(WordMass, IsLeastForWhatAllPagesHave) {
  EXPECT_EQ(WordMass(1, 1000), kWordWeightLimit);
  EXPECT_EQ(WordMass(1000, 1000), 1u);
  EXPECT_GT(WordMass(10, 1000), WordMass(100, 1000));
  // Whatever a damaged or foreign file says.
  EXPECT_EQ(WordMass(0, 1000), kWordWeightLimit);
  EXPECT_EQ(WordMass(5000, 1000), 1u);
  EXPECT_GE(WordMass(0, 0), 1u);
}

TEST(WordWeight, IsAShareOfTheMass) {
  // n / (n + 1.6) of 100.
  EXPECT_EQ(Weight(Occurs(1), Page()), 38u);
  EXPECT_EQ(Weight(Occurs(2), Page()), 56u);
  EXPECT_EQ(Weight(Occurs(255), Page()), 99u);
  EXPECT_EQ(Weight(Occurs(0), Page()), 1u);  // never nothing
}

TEST(WordWeight, TitleAndHeadingsCountAsOccurrences) {
  EXPECT_EQ(Weight(Occurs(0, kInTitle), Page()), 58u);  // 1.5 / 3.1, and a tenth
  EXPECT_EQ(Weight(Occurs(0, kInMainHeading), Page()), Weight(Occurs(2), Page()));
  EXPECT_EQ(Weight(Occurs(1, kInHeading), Page()), Weight(Occurs(2), Page()));
  EXPECT_GT(Weight(Occurs(1, kInSmallHeading), Page()), Weight(Occurs(1), Page()));
  EXPECT_EQ(Weight(Occurs(1, kInDescription), Page()), Weight(Occurs(2), Page()));
  EXPECT_EQ(Weight(Occurs(1, kInAddress), Page()), Weight(Occurs(2), Page()));
  EXPECT_TRUE(IsTitleWord(WordWeight(Occurs(1, kInTitle), Page())));
  EXPECT_FALSE(IsTitleWord(WordWeight(Occurs(1, kInMainHeading), Page())));
}

TEST(WordWeight, LongerPagesLessAndStubsNotMore) {
  WeightContext page = Page();
  page.pageWords = 900;  // three times the average: 1.8 = 0.6 + 0.4 * 3 occurrences for one
  EXPECT_EQ(Weight(Occurs(9), page), Weight(Occurs(5), Page()));
  page.pageWords = 150;
  const uint32_t half = Weight(Occurs(1), page);
  EXPECT_GT(half, Weight(Occurs(1), Page()));
  page.pageWords = 3;
  EXPECT_EQ(Weight(Occurs(1), page), half);
}

TEST(WordWeight, ListsOfLinksLess) {
  WeightContext page = Page();
  page.linkShare = 0.4;
  EXPECT_EQ(Weight(Occurs(255), page), 99u);
  page.linkShare = 0.7;  // half of the way to nothing but links: 60 % of it
  EXPECT_EQ(Weight(Occurs(255), page), 60u);
  page.linkShare = 1;
  EXPECT_EQ(Weight(Occurs(255), page), 20u);
}

TEST(WordWeight, MoreOnThePageToWhichOthersLeadByIt) {
  WeightContext page = Page();
  page.linking = page.mostLinking = 40;
  EXPECT_EQ(Weight(Occurs(2), page), 83u);  // 55.6 and 27 of 100
  page.linking = 20;                        // half as many as to another page
  EXPECT_EQ(Weight(Occurs(2), page), 69u);
  page.linking = page.mostLinking = 1;  // a third: one page alone says little
  EXPECT_EQ(Weight(Occurs(2), page), 65u);
  page.mass = kWordWeightLimit;
  page.linking = page.mostLinking = 3;
  EXPECT_EQ(Weight(Occurs(255), page), kWordWeightLimit);
}

TEST(WordWeight, MoreAtTheBeginning) {
  // One of 300 words is in the first 30 tokens, no title: 38 and 15 of 100.
  const auto at = [](uint32_t token, uint8_t zones = 0) {
    Posting posting = Occurs(1, zones);
    posting.token = token;
    return posting;
  };
  EXPECT_EQ(Weight(at(0), Page()), 53u);
  EXPECT_EQ(Weight(at(29), Page()), 53u);
  EXPECT_EQ(Weight(at(30), Page()), 38u);
  EXPECT_EQ(Weight(at(0, kInTitle), Page()), 71u);  // 2.5 of 4.1, and a tenth
  // A word of the address alone, where nothing stands before it.
  Posting address = Occurs(0, kInAddress);
  EXPECT_EQ(Weight(address, Page()), 38u);
  // Of a long page no more than 60 tokens.
  WeightContext page = Page();
  page.pageWords = 3000;
  page.averageWords = 3000;
  EXPECT_EQ(Weight(at(59), page), 53u);
  EXPECT_EQ(Weight(at(60), page), 38u);
}

}  // namespace
}  // namespace vela::indexer
