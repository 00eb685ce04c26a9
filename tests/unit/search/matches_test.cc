#include "search/matches.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::LoadedSite;
using support::NewPage;
using support::PageFields;

PageFields PageWith(uint8_t boost, uint32_t date) {
  PageFields page = NewPage("a.html");
  page.boost = boost;
  page.dateTime = date;
  return page;
}

IndexBuilder PlainPages(int count) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4");
  for (int i = 0; i < count; ++i) builder.Page(PageWith(0, 0));
  return builder;
}

// Matches being gathered over the pages of a site.
struct Gathering {
  LoadedSite site;
  Matches matches;
  int32_t sort = 0;
  int32_t maxContextKeywords = 10;

  explicit Gathering(const IndexBuilder& builder) : site(builder) {
    EXPECT_TRUE(AllocateMatches(matches, site.settings.NumPages));
  }
  bool Add(uint32_t page, uint8_t score, const TermPlace& term = {}, uint8_t proximity = 0,
           uint64_t position = 0) {
    return TermRecords(matches, site.files.pages, term, sort, maxContextKeywords)
        .Add({score, proximity, page, position});
  }
  const PageMatch& operator[](uint32_t page) const { return matches.pages[page]; }
};

TEST(Matches, WithRankingWeightsAddUp) {
  LoadedSite site(PlainPages(2));
  Matches matches;
  ASSERT_TRUE(AllocateMatches(matches, 2));
  ASSERT_TRUE(AllocateWeights(matches, 2));
  const auto add = [&](uint32_t page, uint32_t score, int32_t term) {
    const TermPlace place = {.index = term, .listIndex = term};
    return TermRecords(matches, site.files.pages, place, 0, 10).Add({score, 0, page, 0});
  };
  // Scores are twice the weight, and one more for a word of the title.
  EXPECT_TRUE(add(0, 41, 0));
  EXPECT_TRUE(add(0, 60, 1));
  EXPECT_TRUE(add(1, 7, 1));
  EXPECT_EQ(matches.pages[0].score, 50u);
  EXPECT_EQ(matches.weights.At(0).found, 2u);
  EXPECT_EQ(matches.weights.At(0).titleTerms, 1u);
  EXPECT_EQ(matches.pages[1].score, 3u);
  EXPECT_EQ(matches.weights.At(1).titleTerms, 2u);
}

TermPlace Exclusion(int32_t index) { return {index, 0, 1, true}; }

TEST(PageMatches, WhatWasNotTouchedIsZero) {
  PageMatches pages;
  ASSERT_TRUE(pages.TryAllocate(10));
  EXPECT_EQ(pages.size(), 10u);
  pages.Touch(9).score = 7;
  pages.Touch(1).score = 5;
  pages.TouchFurther(1).third[0] = 3;
  for (uint32_t page = 0; page < 10; ++page) {
    EXPECT_EQ(pages[page].score, page == 9 ? 7u : page == 1 ? 5u : 0u) << page;
    EXPECT_EQ(pages.Further(page).third[0], page == 1 ? 3 : 0) << page;
  }
}

TEST(PageMatches, EveryPageHasItsOwn) {
  PageMatches pages;
  ASSERT_TRUE(pages.TryAllocate(1000));
  for (uint32_t i = 0; i < 1000; ++i) pages.Touch(i * 7 % 1000).score = i * 7 % 1000 + 1;
  for (uint32_t page = 0; page < 1000; ++page) EXPECT_EQ(pages[page].score, page + 1);
}

TEST(PageMatches, NoMemory) {
  PageMatches pages;
  for (int32_t allocation = 1; allocation <= 3; ++allocation) {
    g_failAllocationNumber = allocation;
    EXPECT_FALSE(pages.TryAllocate(10)) << allocation;
  }
  EXPECT_TRUE(pages.TryAllocate(10));
}

TEST(BoostedScore, Table) {
  const struct {
    const char* what;
    uint32_t score;
    uint8_t boost;
    uint32_t expected;
  } cases[] = {
      {"7 by 1.5 is rounded up to 11", 7, 15, 11},
      {"200 by 1.5", 200, 15, 300},
      {"no boost", 200, 0, 200},
      {"unchanged", 200, 10, 200},
      {"rounded down", 3, 18, 5},  // 5.4
      {"rounded up", 4, 19, 8},    // 7.6
      {"half", 1, 5, 1},           // 0.5
      {"below half", 1, 4, 0},     // 0.4
      {"nothing stays nothing", 0, 255, 0},
      {"the largest", 255, 255, 6503},  // 6502.5
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BoostedScore(c.score, c.boost), c.expected);
  }
}

TEST(Matches, BoostOfThePageCounts) {
  IndexBuilder builder = PlainPages(1);
  builder.Page(PageWith(15, 0)).Page(PageWith(1, 0));
  Gathering gathering(builder);
  ASSERT_TRUE(gathering.Add(0, 200));
  ASSERT_TRUE(gathering.Add(1, 200));
  EXPECT_EQ(gathering[0].score, 200u);
  EXPECT_EQ(gathering[1].score, 300u);
}

TEST(Matches, RecordWithoutScoreIsIgnoredEntirely) {
  IndexBuilder builder = PlainPages(1);
  builder.Page(PageWith(1, 0));
  Gathering gathering(builder);
  ASSERT_TRUE(gathering.Add(0, 0));
  ASSERT_TRUE(gathering.Add(1, 4));  // 0.4
  EXPECT_EQ(gathering.matches.resultCount, 0);
  EXPECT_EQ(gathering[0].termsMatched, 0u);
  EXPECT_EQ(gathering[1].termsMatched, 0u);
  ASSERT_TRUE(gathering.Add(0, 5));
  ASSERT_TRUE(gathering.Add(0, 0, Exclusion(1)));
  EXPECT_EQ(gathering[0].score, 5u);
  EXPECT_EQ(gathering.matches.resultCount, 1);
}

TEST(Matches, FirstRecordOfAPage) {
  Gathering gathering(PlainPages(3));
  ASSERT_TRUE(gathering.Add(2, 77, {}, 0xA5, 1099511627775));
  EXPECT_EQ(gathering.matches.resultCount, 1);
  EXPECT_EQ(gathering[2].score, 77u);
  EXPECT_EQ(gathering[2].proximityMask, 0xA5);
  EXPECT_EQ(gathering[2].firstPosition(), 1099511627775u);
  EXPECT_EQ(FurtherPosition(gathering.matches, 2, 0), 0u);
  EXPECT_EQ(gathering[2].termsMatched, 1u);
  EXPECT_EQ(gathering[2].termsInOrder, 1u);
  EXPECT_EQ(gathering[0].score, 0u);
}

TEST(Matches, ProximityBytesAreCombinedByAnd) {
  Gathering gathering(PlainPages(1));
  ASSERT_TRUE(gathering.Add(0, 1, {}, 0x06));
  ASSERT_TRUE(gathering.Add(0, 1, {}, 0x0C));
  EXPECT_EQ(gathering[0].proximityMask, 0x04);
}

TEST(Matches, ScoreBeyondTenThousandGrowsByOne) {
  Gathering gathering(PlainPages(1));
  for (int i = 0; i < 40; ++i) ASSERT_TRUE(gathering.Add(0, 250));
  EXPECT_EQ(gathering[0].score, 10000u);
  ASSERT_TRUE(gathering.Add(0, 250));  // at 10000 the whole score still counts
  EXPECT_EQ(gathering[0].score, 10250u);
  ASSERT_TRUE(gathering.Add(0, 250));
  EXPECT_EQ(gathering[0].score, 10251u);
  ASSERT_TRUE(gathering.Add(0, 1));
  EXPECT_EQ(gathering[0].score, 10252u);
  EXPECT_EQ(gathering[0].termsMatched, 43u);
}

TEST(Matches, PositionsTable) {
  const struct {
    const char* what;
    int32_t maxContextKeywords;
    std::vector<uint64_t> positions;
    uint64_t first, second, third;
  } cases[] = {
      {"three and no more", 10, {5, 6, 7, 8}, 5, 6, 7},
      {"none beyond the first", 0, {5, 6, 7}, 5, 0, 0},
      {"one keyword", 1, {5, 6, 7}, 5, 0, 0},
      {"two keywords", 2, {5, 6, 7}, 5, 6, 0},
      {"three keywords", 3, {5, 6, 7, 8}, 5, 6, 7},
      {"a negative number of keywords", -1, {5, 6}, 5, 0, 0},
      {"position 0 leaves its place free", 10, {5, 0, 7, 8}, 5, 7, 8},
      {"the first position can be 0", 10, {0, 6, 7}, 0, 6, 7},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Gathering gathering(PlainPages(1));
    gathering.maxContextKeywords = c.maxContextKeywords;
    for (uint64_t position : c.positions) ASSERT_TRUE(gathering.Add(0, 1, {}, 0, position));
    EXPECT_EQ(gathering[0].firstPosition(), c.first);
    EXPECT_EQ(FurtherPosition(gathering.matches, 0, 0), c.second);
    EXPECT_EQ(FurtherPosition(gathering.matches, 0, 1), c.third);
  }
}

TEST(Matches, ExclusionEmptiesThePageAndCountsDown) {
  Gathering gathering(PlainPages(2));
  ASSERT_TRUE(gathering.Add(0, 50));
  ASSERT_TRUE(gathering.Add(1, 50));
  ASSERT_TRUE(gathering.Add(0, 50, Exclusion(1)));
  EXPECT_EQ(gathering[0].score, 0u);
  EXPECT_EQ(gathering[0].termsMatched, 2u);
  EXPECT_EQ(gathering[1].score, 50u);
  EXPECT_EQ(gathering.matches.resultCount, 1);
}

TEST(Matches, ExclusionCountsDownForPagesThatWereNotCounted) {
  Gathering gathering(PlainPages(2));
  ASSERT_TRUE(gathering.Add(0, 50, Exclusion(0)));
  ASSERT_TRUE(gathering.Add(0, 50, Exclusion(0)));
  EXPECT_EQ(gathering.matches.resultCount, -2);
}

TEST(Matches, RecordBehindAnExclusionStartsThePageAgain) {
  Gathering gathering(PlainPages(1));
  ASSERT_TRUE(gathering.Add(0, 50, {0, 0, 0, false}, 0x01, 5));
  ASSERT_TRUE(gathering.Add(0, 50, Exclusion(1), 0x01, 6));
  ASSERT_TRUE(gathering.Add(0, 30, {2, 0, 1, false}, 0x80, 7));
  EXPECT_EQ(gathering[0].score, 30u);
  EXPECT_EQ(gathering[0].proximityMask, 0x80);
  EXPECT_EQ(gathering[0].firstPosition(), 7u);
  EXPECT_EQ(gathering[0].termsMatched, 3u);
  EXPECT_EQ(gathering.matches.resultCount, 1);
}

TEST(Matches, PageNumberEqualToThePageCountIsRefused) {
  Gathering gathering(PlainPages(2));
  EXPECT_TRUE(gathering.Add(1, 5));
  EXPECT_FALSE(gathering.Add(2, 5));
  EXPECT_FALSE(gathering.Add(16777215, 5));
  EXPECT_FALSE(gathering.Add(2, 0));  // before the score is looked at
}

TEST(Matches, TermsInOrder) {
  struct Step {
    TermPlace term;
    uint32_t inOrder;
  };
  const struct {
    const char* what;
    std::vector<Step> steps;
  } cases[] = {
      {"every term", {{{0, 0, 0, false}, 1}, {{1, 0, 0, false}, 2}, {{2, 0, 0, false}, 3}}},
      {"the first term is missed", {{{1, 0, 0, false}, 0}, {{2, 0, 0, false}, 0}}},
      {"a term in the middle is missed", {{{0, 0, 0, false}, 1}, {{2, 0, 0, false}, 1}}},
      {"several words for one term",
       {{{0, 0, 0, false}, 1}, {{0, 0, 0, false}, 1}, {{1, 0, 0, false}, 2}}},
      {"the first term was skipped", {{{1, 1, 0, false}, 1}, {{2, 1, 0, false}, 2}}},
      {"a later term was skipped", {{{0, 0, 0, false}, 1}, {{2, 1, 0, false}, 2}}},
      {"a restriction in front", {{{1, 0, 1, false}, 1}, {{2, 0, 1, false}, 2}}},
      {"skipped and restricted", {{{2, 1, 1, false}, 1}, {{3, 1, 1, false}, 2}}},
      // Kept: the plain index counts as well, so that here a missed term goes unnoticed.
      {"a skipped term makes up for a missed one",
       {{{0, 0, 0, false}, 1}, {{1, 0, 0, false}, 2}, {{3, 1, 0, false}, 3}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Gathering gathering(PlainPages(1));
    for (const Step& step : c.steps) {
      ASSERT_TRUE(gathering.Add(0, 1, step.term));
      EXPECT_EQ(gathering[0].termsInOrder, step.inOrder);
    }
  }
}

TEST(Matches, KeyRangeOfRelevance) {
  Gathering gathering(PlainPages(2));
  gathering.sort = -5;  // below 1 is relevance
  ASSERT_TRUE(gathering.Add(0, 200));
  ASSERT_TRUE(gathering.Add(1, 10));
  ASSERT_TRUE(gathering.Add(1, 10));
  ASSERT_TRUE(gathering.Add(1, 10));
  EXPECT_EQ(gathering.matches.maxScore, 200u);
  EXPECT_EQ(gathering.matches.maxTermsMatched, 3u);
}

TEST(Matches, KeyRangeCountsWhatAnExclusionTouched) {
  Gathering gathering(PlainPages(1));
  ASSERT_TRUE(gathering.Add(0, 200));
  ASSERT_TRUE(gathering.Add(0, 200, Exclusion(1)));
  EXPECT_EQ(gathering.matches.maxScore, 200u);
  EXPECT_EQ(gathering.matches.maxTermsMatched, 2u);
}

TEST(Matches, KeyRangeOfDates) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4");
  for (uint32_t date : {1000u, 500u, 2000u, 0xFFFFFFFFu}) builder.Page(PageWith(0, date));
  for (int32_t sort : {1, 2, 3}) {
    SCOPED_TRACE(sort);
    Gathering gathering(builder);
    gathering.sort = sort;
    ASSERT_TRUE(gathering.Add(0, 1));
    EXPECT_EQ(gathering.matches.minDate, 1000);
    EXPECT_EQ(gathering.matches.maxDate, 1000);
    ASSERT_TRUE(gathering.Add(1, 1));
    ASSERT_TRUE(gathering.Add(2, 1));
    EXPECT_EQ(gathering.matches.minDate, 500);
    EXPECT_EQ(gathering.matches.maxDate, 2000);
    ASSERT_TRUE(gathering.Add(3, 1));  // signed: before 1970
    EXPECT_EQ(gathering.matches.minDate, -1);
    EXPECT_EQ(gathering.matches.maxDate, 2000);
    EXPECT_EQ(gathering.matches.maxScore, 0u);
  }
}

TEST(Matches, SmallestDateStartsAgainWhileOnePageIsCounted) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4").Page(PageWith(0, 500)).Page(PageWith(0, 1000));
  Gathering gathering(builder);
  gathering.sort = 1;
  ASSERT_TRUE(gathering.Add(0, 1));
  EXPECT_EQ(gathering.matches.minDate, 500);
  ASSERT_TRUE(gathering.Add(1, 1));
  EXPECT_EQ(gathering.matches.minDate, 500);
  ASSERT_TRUE(gathering.Add(1, 1, Exclusion(1)));  // down to one: the date of this record
  EXPECT_EQ(gathering.matches.minDate, 1000);
}

TEST(Matches, Allocation) {
  Matches matches;
  EXPECT_TRUE(AllocateMatches(matches, 0));
  EXPECT_FALSE(AllocateMatches(matches, -1));
  EXPECT_FALSE(AllocateMatches(matches, INT32_MAX));
  g_failAllocationNumber = 1;
  EXPECT_FALSE(AllocateMatches(matches, 5));
  g_failAllocationNumber = 0;
}

}  // namespace
}  // namespace vela
