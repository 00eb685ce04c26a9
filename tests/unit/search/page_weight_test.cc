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
  EXPECT_EQ(weights.Add(Record(0), 0, false, 40), 40u);
  EXPECT_EQ(weights.Add(Record(0, true), 2, false, 30), 30u);
  EXPECT_EQ(weights.At(0).terms, 0b101u);
  EXPECT_EQ(weights.At(0).titleTerms, 0b100u);
}

TEST(PageWeights, EveryPageHasItsOwn) {
  PageWeights weights = Weights();
  for (uint32_t page : {63u, 64u, 99u}) {
    WordMapRecord record = Record(0x80, page == 64);
    record.page = page;
    weights.Add(record, 0, false, 1);
    if (page == 99) weights.Add(record, 1, false, 1);
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
  EXPECT_EQ(weights.Add(Record(0), 1, true, 40), 40u);
  EXPECT_EQ(weights.Add(Record(0), 1, true, 30), 0u);
  EXPECT_EQ(weights.Add(Record(0, true), 1, true, 100), 60u);
  EXPECT_EQ(weights.At(0).terms, 0b10u);
  EXPECT_EQ(weights.At(0).titleTerms, 0b10u);
  EXPECT_EQ(weights.At(0).near, 0);
  // The next term begins anew.
  EXPECT_EQ(weights.Add(Record(0), 2, true, 7), 7u);
  EXPECT_EQ(weights.Add(Record(0), 2, true, 9), 2u);
}

TEST(PageWeights, ATermIsNearTheOneBeforeInTheSameBlock) {
  PageWeights weights = Weights();
  weights.Add(Record(0x80), 0, false, 1);
  weights.Add(Record(0x41), 1, false, 1);
  EXPECT_EQ(weights.At(0).near, 0);
  weights.Add(Record(0x01), 2, false, 1);
  EXPECT_EQ(weights.At(0).near, 1);
  // The blocks of all words of a term.
  weights.Add(Record(0x20), 3, true, 1);
  weights.Add(Record(0x10), 3, true, 1);
  weights.Add(Record(0x20), 4, false, 1);
  EXPECT_EQ(weights.At(0).near, 2);
}

TEST(PageWeights, TermsBehindThoseToldApartWeighAndNoMore) {
  PageWeights weights = Weights();
  EXPECT_EQ(weights.Add(Record(0xFF, true), 31, false, 7), 7u);
  EXPECT_EQ(weights.Add(Record(0xFF, true), 32, false, 9), 9u);
  EXPECT_EQ(weights.Add(Record(0xFF, true), 32, false, 9), 9u);
  EXPECT_EQ(weights.At(0).terms, 0x80000000u);
  EXPECT_EQ(weights.At(0).titleTerms, 0x80000000u);
  EXPECT_EQ(weights.At(0).near, 0);
}

TEST(PageWeights, OfOneTermNothingIsNear) {
  PageWeights weights;
  ASSERT_TRUE(weights.TryAllocate(100, false));
  EXPECT_EQ(weights.Add(Record(0x80, true), 0, true, 40), 40u);
  EXPECT_EQ(weights.Add(Record(0x80), 0, true, 50), 10u);
  EXPECT_EQ(weights.At(0).terms, 1u);
  EXPECT_EQ(weights.At(0).titleTerms, 1u);
  EXPECT_EQ(weights.At(0).near, 0);
}

}  // namespace
}  // namespace vela
