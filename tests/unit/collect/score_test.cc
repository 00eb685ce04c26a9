#include "indexer/collect/score.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

ScoreContext Site() {
  ScoreContext context;
  context.pageWords = 300;
  context.averageWords = 300;
  context.titleWords = 4;
  context.pagesWithWord = 10;
  context.pages = 1000;
  return context;
}

Posting Occurs(uint8_t total, uint8_t zones = 0) {
  Posting posting;
  posting.total = total;
  posting.body = total;
  posting.zones = zones;
  return posting;
}

TEST(WordScore, IsAtLeastTheNumberOfOccurrences) {
  ScoreContext context = Site();
  context.pagesWithWord = 1000;  // on every page: as low as a score gets
  for (const int count : {1, 2, 50, 200, 254, 255}) {
    EXPECT_GE(WordScore(Occurs(static_cast<uint8_t>(count)), context), count);
  }
  context.inSomeTitle = true;
  EXPECT_EQ(WordScore(Occurs(227), context), 227);
  EXPECT_EQ(WordScore(Occurs(255), context), kBesideTitleLimit);
}

TEST(WordScore, GrowsWithWhatItCounts) {
  const ScoreContext context = Site();
  EXPECT_GT(WordScore(Occurs(2), context), WordScore(Occurs(1), context));
  EXPECT_GT(WordScore(Occurs(9), context), WordScore(Occurs(2), context));
  const uint8_t plain = WordScore(Occurs(2), context);
  for (const uint8_t zone :
       {kInMainHeading, kInHeading, kInSmallHeading, kInDescription, kInAddress, kInTitle}) {
    EXPECT_GT(WordScore(Occurs(2, zone), context), plain) << int{zone};
  }
  ScoreContext rare = context;
  rare.pagesWithWord = 1;
  EXPECT_GT(WordScore(Occurs(2), rare), plain);
  ScoreContext longer = context;
  longer.pageWords = 3000;
  EXPECT_LT(WordScore(Occurs(2), longer), plain);
}

// What puts a page first for the words of its title: no page that has the word elsewhere comes
// near.
TEST(WordScore, ATitleOutweighsEverythingElseOnTheSite) {
  const uint8_t everywhere =
      kInMainHeading | kInHeading | kInSmallHeading | kInDescription | kInAddress;
  for (const uint32_t pages : {1u, 5u, 100u, 100000u}) {
    for (const uint32_t with : {1u, 3u, 100u, 99999u}) {
      for (const int most : {1, 40, 228, 255}) {
        if (with > pages) continue;
        ScoreContext context = Site();
        context.pages = pages;
        context.pagesWithWord = with;
        context.mostOnPage = static_cast<uint8_t>(most);
        context.inSomeTitle = true;
        const uint8_t other = WordScore(Occurs(static_cast<uint8_t>(most), everywhere), context);
        for (const uint32_t titleWords : {1u, 5u, 10u}) {
          context.titleWords = titleWords;
          Posting titled;
          titled.total = 1;
          titled.zones = kInTitle;
          EXPECT_GE(WordScore(titled, context), other) << pages << " " << with << " " << most;
          EXPECT_TRUE(titleWords == 10 || WordScore(titled, context) > other);
        }
      }
    }
  }
}

TEST(WordScore, AShorterTitleWeighsMore) {
  ScoreContext context = Site();
  context.inSomeTitle = true;
  uint8_t before = 255;
  for (uint32_t titleWords = 1; titleWords <= 10; ++titleWords) {
    context.titleWords = titleWords;
    const uint8_t score = WordScore(Occurs(3, kInTitle), context);
    EXPECT_LT(score, before) << titleWords;
    before = score;
  }
  context.titleWords = 0;
  EXPECT_GT(WordScore(Occurs(3, kInTitle), context), before);
}

TEST(WordScore, StaysInItsByte) {
  ScoreContext context;  // nothing known: the smallest of everything
  EXPECT_GE(WordScore(Occurs(0), context), 1);
  context.pages = 1;
  context.pagesWithWord = 1;
  context.mostOnPage = 255;
  context.inSomeTitle = true;
  context.titleWords = 1;
  EXPECT_EQ(WordScore(Occurs(255, kInTitle | kInMainHeading), context), 255);
}

}  // namespace
}  // namespace vela::indexer
