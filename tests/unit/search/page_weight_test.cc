#include "search/page_weight.h"

#include <gtest/gtest.h>

namespace vela {
namespace {

constexpr uint32_t kTitleBit = 1;  // of a score byte

// A record with that proximity byte, in the title or not.
WordMapRecord Record(uint8_t blocks, bool inTitle = false) {
  return {.score = inTitle ? kTitleBit : 0, .proximity = blocks, .page = 0, .position = 0};
}

// The weights of a site of 100 pages, and what is kept of these beside.
struct Site {
  PageWeights weights;
  bool touched[100] = {};
  uint8_t blocks[100] = {};

  explicit Site(bool hasSeveralTerms = true) {
    EXPECT_TRUE(weights.TryAllocate(100, hasSeveralTerms));
  }

  // What the page of the record gains.
  uint32_t Add(int32_t term, bool hasSeveralWords, const WordMapRecord& record, uint32_t weight) {
    const TermWeights records = weights.StartTerm(term, hasSeveralWords);
    if (touched[record.page]) return records.Add(record, weight, blocks[record.page]);
    touched[record.page] = true;
    blocks[record.page] = record.proximity;
    records.AddFirst(record, weight);
    return weight;
  }
  PageWeight At(uint32_t page) const { return weights.At(page); }
};

TEST(PageWeights, TermsAddUp) {
  Site site;
  EXPECT_EQ(site.Add(0, false, Record(0), 40), 40u);
  EXPECT_EQ(site.Add(2, false, Record(0, true), 30), 30u);
  EXPECT_EQ(site.At(0).found, 2u);
  EXPECT_EQ(site.At(0).titleTerms, 0b100u);
}

TEST(PageWeights, EveryPageHasItsOwn) {
  Site site;
  for (uint32_t page : {63u, 64u, 99u}) {
    WordMapRecord record = Record(0x80, page == 64);
    record.page = page;
    site.Add(0, false, record, 1);
    if (page == 99) site.Add(1, false, record, 1);
  }
  for (uint32_t page = 0; page < 100; ++page) {
    const PageWeight weight = site.At(page);
    EXPECT_EQ(weight.found, page == 99 ? 2u : page == 63 || page == 64 ? 1u : 0u) << page;
    EXPECT_EQ(weight.titleTerms, page == 64 ? 1u : 0u) << page;
    EXPECT_EQ(weight.near, page == 99 ? 1 : 0) << page;
  }
}

TEST(PageWeights, OfTheWordsOfATermTheHeaviestCounts) {
  Site site;
  EXPECT_EQ(site.Add(1, true, Record(0), 40), 40u);
  EXPECT_EQ(site.Add(1, true, Record(0), 30), 0u);
  EXPECT_EQ(site.Add(1, true, Record(0, true), 100), 60u);
  EXPECT_EQ(site.At(0).found, 1u);
  EXPECT_EQ(site.At(0).titleTerms, 0b10u);
  EXPECT_EQ(site.At(0).near, 0);
  // The next term begins anew.
  EXPECT_EQ(site.Add(2, true, Record(0), 7), 7u);
  EXPECT_EQ(site.Add(2, true, Record(0), 9), 2u);
}

TEST(PageWeights, ATermIsNearTheOneBeforeInTheSameBlock) {
  Site site;
  site.Add(0, false, Record(0x80), 1);
  site.Add(1, false, Record(0x41), 1);
  EXPECT_EQ(site.At(0).near, 0);
  site.Add(2, false, Record(0x01), 1);
  EXPECT_EQ(site.At(0).near, 1);
  // The blocks of all words of a term.
  site.Add(3, true, Record(0x20), 1);
  site.Add(3, true, Record(0x10), 1);
  site.Add(4, false, Record(0x20), 1);
  EXPECT_EQ(site.At(0).near, 2);
}

TEST(PageWeights, TermsBehindThoseToldApartWeighAndNoMore) {
  Site site;
  EXPECT_EQ(site.Add(31, false, Record(0xFF, true), 7), 7u);
  EXPECT_EQ(site.Add(32, false, Record(0xFF, true), 9), 9u);
  EXPECT_EQ(site.Add(32, false, Record(0xFF, true), 9), 9u);
  EXPECT_EQ(site.At(0).found, 1u);
  EXPECT_EQ(site.At(0).titleTerms, 0x80000000u);
  EXPECT_EQ(site.At(0).near, 0);
}

TEST(PageWeights, OfOneTermNothingIsNear) {
  Site site(false);
  EXPECT_EQ(site.Add(0, true, Record(0x80, true), 40), 40u);
  EXPECT_EQ(site.Add(0, true, Record(0x80), 50), 10u);
  EXPECT_EQ(site.At(0).found, 1u);
  EXPECT_EQ(site.At(0).titleTerms, 1u);
  EXPECT_EQ(site.At(0).near, 0);
}

}  // namespace
}  // namespace vela
