#include "search/page_weight.h"

#include <gtest/gtest.h>

namespace vela {
namespace {

constexpr uint32_t kTitleBit = 1;  // of a score byte

// A record with that proximity byte, in the title or not.
WordMapRecord Record(uint8_t blocks, bool inTitle = false) {
  return {.score = inTitle ? kTitleBit : 0, .proximity = blocks, .page = 0, .position = 0};
}

// The weights of a site of 100 pages.
PageWeights Weights() {
  PageWeights weights;
  EXPECT_TRUE(weights.TryAllocate(100, true));
  return weights;
}

TEST(PageWeights, TermsAddUp) {
  PageWeights weights = Weights();
  EXPECT_EQ(weights.StartTerm(0, false).Add(Record(0), 40), 40u);
  EXPECT_EQ(weights.StartTerm(2, false).Add(Record(0, true), 30), 30u);
  EXPECT_EQ(weights.At(0).terms, 0b101u);
  EXPECT_EQ(weights.At(0).titleTerms, 0b100u);
}

TEST(PageWeights, EveryPageHasItsOwn) {
  PageWeights weights = Weights();
  for (uint32_t page : {63u, 64u, 99u}) {
    WordMapRecord record = Record(0x80, page == 64);
    record.page = page;
    weights.StartTerm(0, false).Add(record, 1);
    if (page == 99) weights.StartTerm(1, false).Add(record, 1);
  }
  for (uint32_t page = 0; page < 100; ++page) {
    const PageWeight weight = weights.At(page);
    EXPECT_EQ(weight.terms, page == 99 ? 3u : page == 63 || page == 64 ? 1u : 0u) << page;
    EXPECT_EQ(weight.titleTerms, page == 64 ? 1u : 0u) << page;
    EXPECT_EQ(weight.near, page == 99 ? 1 : 0) << page;
  }
}

TEST(PageWeights, OfTheWordsOfATermTheHeaviestCounts) {
  PageWeights weights = Weights();
  EXPECT_EQ(weights.StartTerm(1, true).Add(Record(0), 40), 40u);
  EXPECT_EQ(weights.StartTerm(1, true).Add(Record(0), 30), 0u);
  EXPECT_EQ(weights.StartTerm(1, true).Add(Record(0, true), 100), 60u);
  EXPECT_EQ(weights.At(0).terms, 0b10u);
  EXPECT_EQ(weights.At(0).titleTerms, 0b10u);
  EXPECT_EQ(weights.At(0).near, 0);
  // The next term begins anew.
  EXPECT_EQ(weights.StartTerm(2, true).Add(Record(0), 7), 7u);
  EXPECT_EQ(weights.StartTerm(2, true).Add(Record(0), 9), 2u);
}

TEST(PageWeights, ATermIsNearTheOneBeforeInTheSameBlock) {
  PageWeights weights = Weights();
  weights.StartTerm(0, false).Add(Record(0x80), 1);
  weights.StartTerm(1, false).Add(Record(0x41), 1);
  EXPECT_EQ(weights.At(0).near, 0);
  weights.StartTerm(2, false).Add(Record(0x01), 1);
  EXPECT_EQ(weights.At(0).near, 1);
  // The blocks of all words of a term.
  weights.StartTerm(3, true).Add(Record(0x20), 1);
  weights.StartTerm(3, true).Add(Record(0x10), 1);
  weights.StartTerm(4, false).Add(Record(0x20), 1);
  EXPECT_EQ(weights.At(0).near, 2);
}

TEST(PageWeights, TermsBehindThoseToldApartWeighAndNoMore) {
  PageWeights weights = Weights();
  EXPECT_EQ(weights.StartTerm(31, false).Add(Record(0xFF, true), 7), 7u);
  EXPECT_EQ(weights.StartTerm(32, false).Add(Record(0xFF, true), 9), 9u);
  EXPECT_EQ(weights.StartTerm(32, false).Add(Record(0xFF, true), 9), 9u);
  EXPECT_EQ(weights.At(0).terms, 0x80000000u);
  EXPECT_EQ(weights.At(0).titleTerms, 0x80000000u);
  EXPECT_EQ(weights.At(0).near, 0);
}

TEST(PageWeights, OfOneTermNothingIsNear) {
  PageWeights weights;
  ASSERT_TRUE(weights.TryAllocate(100, false));
  EXPECT_EQ(weights.StartTerm(0, true).Add(Record(0x80, true), 40), 40u);
  EXPECT_EQ(weights.StartTerm(0, true).Add(Record(0x80), 50), 10u);
  EXPECT_EQ(weights.At(0).terms, 1u);
  EXPECT_EQ(weights.At(0).titleTerms, 1u);
  EXPECT_EQ(weights.At(0).near, 0);
}

}  // namespace
}  // namespace vela
