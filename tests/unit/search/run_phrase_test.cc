#include "search/run_phrase.h"

#include <gtest/gtest.h>

#include <vector>

#include "format/word_weight.h"

namespace vela {
namespace {

TEST(RunWeight, GrowsWithOccurrencesUpToTheMass) {
  // 100 x n / (n + 1.6), rounded; of a title 100 x (n + 3) / (n + 4.6).
  EXPECT_EQ(RunWeight(100, 1, false), WeightByte(38, false));
  EXPECT_EQ(RunWeight(100, 4, false), WeightByte(71, false));
  EXPECT_EQ(RunWeight(100, 1000, false), WeightByte(100, false));
  EXPECT_EQ(RunWeight(100, 1, true), WeightByte(71, true));
  EXPECT_EQ(RunWeight(1, 1, false), WeightByte(1, false));
}

TEST(RunMass, IsThatOfAWordOnAsManyPages) {
  EXPECT_EQ(RunMass(1, 50), kWordWeightLimit);
  EXPECT_EQ(RunMass(20, 50), WordMass(20, 50));
  EXPECT_EQ(RunMass(0, 0), kWordWeightLimit);
}

TEST(RunMatches, AddsEachPageWithItsWeight) {
  RunMatches run;
  ASSERT_TRUE(run.pages.TryAllocate(3));
  run.Add({.score = 1, .page = 4}, 1);
  run.Add({.score = 2, .page = 9}, 4);
  std::vector<WordMapRecord> added;
  const auto add = [&](const WordMapRecord& record) {
    added.push_back(record);
    return record.page != 9;
  };
  EXPECT_FALSE(AddRunMatches(run, 100, add));
  ASSERT_EQ(added.size(), 2u);
  const uint32_t mass = WordMass(2, 100);
  EXPECT_EQ(added[0].page, 4u);
  EXPECT_EQ(added[0].score, RunWeight(mass, 1, true));
  EXPECT_EQ(added[1].score, RunWeight(mass, 4, false));
}

TEST(MassOfWords, CountsEachWordOnce) {
  Phrase phrase;
  ASSERT_TRUE(phrase.words.TryAllocate(3));
  for (PhraseWord& word : phrase.words) word.number = 7;
  phrase.words[2].number = 8;
  EXPECT_EQ(MassOfWords(phrase, 10), 2 * kWordWeightLimit);
}

}  // namespace
}  // namespace vela
