#include "search/page_weight.h"

#include <gtest/gtest.h>

namespace vela {
namespace {

constexpr uint32_t kTitleBit = 1;  // of a score byte

// A record with that proximity byte, in the title or not.
WordMapRecord Record(uint8_t blocks, bool inTitle = false) {
  return {.score = inTitle ? kTitleBit : 0, .proximity = blocks, .page = 0, .position = 0};
}

TEST(PageWeight, TermsAddUp) {
  PageWeight page;
  EXPECT_EQ(AddWeight(page, Record(0), 0, 40), 40u);
  EXPECT_EQ(AddWeight(page, Record(0, true), 2, 30), 30u);
  EXPECT_EQ(page.terms, 0b101u);
  EXPECT_EQ(page.titleTerms, 0b100u);
}

TEST(PageWeight, OfTheWordsOfATermTheHeaviestCounts) {
  PageWeight page;
  EXPECT_EQ(AddWeight(page, Record(0), 1, 40), 40u);
  EXPECT_EQ(AddWeight(page, Record(0), 1, 30), 0u);
  EXPECT_EQ(AddWeight(page, Record(0, true), 1, 100), 60u);
  EXPECT_EQ(page.terms, 0b10u);
  EXPECT_EQ(page.titleTerms, 0b10u);
  EXPECT_EQ(page.near, 0);
}

TEST(PageWeight, ATermIsNearTheOneBeforeInTheSameBlock) {
  PageWeight page;
  AddWeight(page, Record(0x80), 0, 1);
  AddWeight(page, Record(0x41), 1, 1);
  EXPECT_EQ(page.near, 0);
  AddWeight(page, Record(0x01), 2, 1);
  EXPECT_EQ(page.near, 1);
  // The blocks of all words of a term.
  AddWeight(page, Record(0x20), 3, 1);
  AddWeight(page, Record(0x10), 3, 1);
  AddWeight(page, Record(0x20), 4, 1);
  EXPECT_EQ(page.near, 2);
}

TEST(PageWeight, TermsBehindThoseToldApartWeighAndNoMore) {
  PageWeight page;
  EXPECT_EQ(AddWeight(page, Record(0xFF, true), 31, 7), 7u);
  EXPECT_EQ(AddWeight(page, Record(0xFF, true), 32, 9), 9u);
  EXPECT_EQ(AddWeight(page, Record(0xFF, true), 32, 9), 9u);
  EXPECT_EQ(page.terms, 0x80000000u);
  EXPECT_EQ(page.titleTerms, 0x80000000u);
  EXPECT_EQ(page.near, 0);
}

}  // namespace
}  // namespace vela
