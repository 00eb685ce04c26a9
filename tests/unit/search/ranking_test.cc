#include "search/ranking.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::LoadedSite;
using support::NewPage;
using support::PageFields;

// The expected scores were worked out with every step rounded to the precision named: the factor to
// single precision, its power in double precision and then to single.
TEST(FinalScore, Table) {
  const struct {
    const char* what;
    uint32_t score;
    uint32_t termsMatched;
    uint8_t mask;
    int32_t weight;
    uint32_t expected;
  } cases[] = {
      {"one term, nothing near: 1.3", 200, 1, 0x00, 0, 260},
      {"boosted to 300 before the factor", 300, 1, 0x00, 0, 390},
      {"mask 4: 4 / 255 * 1.7 + 1.3", 200, 1, 0x04, 0, 265},
      {"every block: 3", 200, 1, 0xFF, 0, 600},
      {"6.49 with 1.3 in single precision, not 6.5", 5, 1, 0x00, 0, 6},
      {"19.49, not 19.5", 15, 1, 0x00, 0, 19},
      {"39.49, not 39.5", 25, 1, 0x2A, 0, 39},
      {"rounded to the nearest", 10, 1, 0x00, 0, 13},
      {"the smallest score", 1, 1, 0x00, 0, 1},
      {"no score", 0, 1, 0xFF, 0, 0},
      {"two terms take the factor once", 1000, 2, 0x04, 0, 1327},
      {"two terms, every block", 1000, 2, 0xFF, 0, 3000},
      {"three terms take it twice", 1000, 3, 0x80, 0, 4637},
      {"ten terms take it nine times", 100, 10, 0xFF, 0, 1968300},  // 3^9
      {"eleven terms: to the tenth, plus 1", 100, 11, 0xFF, 0, 5905000},
      {"twelve terms: to the tenth, plus 2", 100, 12, 0xFF, 0, 5905100},
      {"twelve terms, nothing near", 777, 12, 0x00, 0, 12266},
      {"ten terms, one block", 777, 10, 0x10, 0, 16755},
      {"eleven terms, one block", 777, 11, 0x10, 0, 24346},
      {"twelve terms, one block", 777, 12, 0x10, 0, 25123},
      {"weight 10 adds 1", 200, 1, 0xFF, 10, 800},
      {"weight 5 adds a half", 200, 1, 0xFF, 5, 700},
      {"weight 3, two terms", 200, 2, 0x0F, 3, 284},
      {"a negative weight", 200, 1, 0xFF, -10, 400},
      {"a large score", 100000, 5, 77, 7, 1680536},
      {"a very large score", 123456, 9, 200, 2, 453513386},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    PageMatch match;
    match.score = c.score;
    match.termsMatched = c.termsMatched;
    match.proximityMask = c.mask;
    EXPECT_EQ(FinalScore(match, c.weight, false), c.expected);
  }
}

TEST(FinalScore, SaturatesWhereItIsToldTo) {
  PageMatch match;
  match.termsMatched = 1;
  match.score = 100;
  EXPECT_EQ(FinalScore(match, 0, true), 130u);
  match.score = 4000000000;
  EXPECT_EQ(FinalScore(match, 0, true), 4294967295u);
  match.proximityMask = 255;
  EXPECT_EQ(FinalScore(match, -100, true), 0u);  // a factor below 0
}

TEST(Histogram, Width) {
  const struct {
    const char* what;
    int64_t keyMin;
    int64_t keyMax;
    int64_t width;
  } cases[] = {
      {"one key", 5, 5, 1},
      {"a range of 9999", 0, 9999, 1},
      {"a range of 10000", 0, 10000, 1},
      {"a range of 10001", 0, 10001, 2},
      {"rounded up", 0, 25001, 3},
      {"not rounded up", 0, 30000, 3},
      {"all dates", INT32_MIN, INT32_MAX, 429497},
      {"very many terms", 0, int64_t{4294967295} * 2147483647, 922337203041233},
      {"the larger key is the smaller one", 10, 0, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KeyHistogram histogram;
    ASSERT_TRUE(StartHistogram(histogram, c.keyMin, c.keyMax));
    EXPECT_EQ(histogram.width, c.width);
  }
}

TEST(Histogram, Buckets) {
  const struct {
    const char* what;
    int64_t keyMin;
    int64_t width;
    int64_t key;
    int32_t bucket;
  } cases[] = {
      {"the smallest key", 100, 1, 100, 0},
      {"a key below it", 100, 1, 99, 0},
      {"far below", 0, 10, INT64_MIN / 2, 0},
      {"one above", 100, 1, 101, 1},
      {"the quotient is rounded up", 100, 10, 101, 1},
      {"a whole quotient", 100, 10, 110, 1},
      {"the next", 100, 10, 111, 2},
      {"the last bucket", 0, 1, 9999, 9999},
      {"beyond the last", 0, 1, 10000, 9999},
      {"far beyond", 0, 1, int64_t{1} << 40, 9999},
      {"negative keys", -1000, 100, -950, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KeyHistogram histogram;
    histogram.keyMin = c.keyMin;
    histogram.width = c.width;
    ASSERT_TRUE(histogram.counts.TryAllocate(kBucketCount));
    EXPECT_EQ(BucketOf(histogram, c.key), c.bucket);
  }
}

TEST(Histogram, NoMoreBucketsThanTheKeysNeed) {
  KeyHistogram histogram;
  ASSERT_TRUE(StartHistogram(histogram, 10, 15, false));
  EXPECT_EQ(histogram.counts.size(), 6u);
  EXPECT_EQ(BucketOf(histogram, 15), 5);
  ASSERT_TRUE(StartHistogram(histogram, 10, 15));
  EXPECT_EQ(BucketOf(histogram, 16), 6);
  ASSERT_TRUE(StartHistogram(histogram, 0, kBucketCount + 5, false));
  EXPECT_EQ(histogram.counts.size(), static_cast<size_t>(kBucketCount));
  EXPECT_EQ(histogram.width, 2);
}

TEST(Histogram, TakingBuckets) {
  const struct {
    const char* what;
    std::vector<std::pair<size_t, uint32_t>> counts;
    int32_t most;
    bool oldestFirst;
    int32_t first, last;
    uint32_t total;
  } cases[] = {
      {"the top bucket is enough", {{9999, 3}, {9998, 5}}, 3, false, 9999, 9999, 3},
      {"a bucket is taken whole", {{9999, 3}, {9998, 5}}, 1, false, 9999, 9999, 3},
      {"the next is needed", {{9999, 3}, {9998, 5}}, 4, false, 9998, 9999, 8},
      {"empty buckets are passed", {{5000, 3}}, 1, false, 5000, 9999, 3},
      {"everything is taken", {{5000, 3}}, 10, false, 0, 9999, 3},
      {"the lowest bucket completes it", {{0, 3}}, 3, false, 0, 9999, 3},
      {"nothing is wanted", {{9999, 3}}, 0, false, 10000, 9999, 0},
      {"less than nothing is wanted", {{9999, 3}}, -5, false, 10000, 9999, 0},
      {"upward", {{0, 3}, {1, 5}}, 3, true, 0, 0, 3},
      {"upward, the next is needed", {{0, 3}, {7, 5}}, 4, true, 0, 7, 8},
      {"upward, everything", {{7, 5}}, 10, true, 0, 9999, 5},
      {"upward, nothing is wanted", {{0, 5}}, 0, true, 0, -1, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    KeyHistogram histogram;
    ASSERT_TRUE(StartHistogram(histogram, 0, 0));
    for (const auto& [bucket, count] : c.counts) histogram.counts[bucket] = count;
    TakeBuckets(histogram, c.most, c.oldestFirst);
    EXPECT_EQ(histogram.firstTaken, c.first);
    EXPECT_EQ(histogram.lastTaken, c.last);
    EXPECT_EQ(histogram.total, c.total);
  }
}

PageFields DatedPage(uint32_t date) {
  PageFields page = NewPage("a.html");
  page.dateTime = date;
  return page;
}

IndexBuilder DatedPages(const std::vector<uint32_t>& dates) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4");
  for (uint32_t date : dates) builder.Page(DatedPage(date));
  return builder;
}

using Numbers = std::vector<uint32_t>;

// One search from the records on.
struct Ranking {
  LoadedSite site;
  SearchRequest request;
  PageFilters filters;
  Matches matches;
  ResultList results;
  bool everyPage = false;
  SiteRestriction restriction;

  explicit Ranking(const IndexBuilder& builder) : site(builder) {
    EXPECT_TRUE(AllocateMatches(matches, site.settings.NumPages));
  }
  void Add(uint32_t page, uint8_t score, const TermPlace& term = {}) {
    ASSERT_TRUE(
        TermRecords(matches, site.files.pages, term, request.sort, 10).Add({score, 0, page, 0}));
  }
  void Prepare() {
    EXPECT_TRUE(PrepareFilters(filters, {.settings = site.settings,
                                         .request = request,
                                         .pages = site.files.pages,
                                         .pageData = site.files.pageData.bytes(),
                                         .site = restriction}));
  }
  RankStatus Rank(int32_t effectiveTerms) {
    Prepare();
    return RankPrepared(effectiveTerms);
  }
  RankStatus RankPrepared(int32_t effectiveTerms) {
    const RankInput input = {.settings = site.settings,
                             .request = request,
                             .pages = site.files.pages,
                             .effectiveTerms = effectiveTerms,
                             .everyPage = everyPage};
    return RankMatches(matches, filters, input, results);
  }
  // The pages listed, in page order, which is how the list is built.
  Numbers Listed() const {
    Numbers pages;
    for (const RankedPage& entry : results.entries) pages.push_back(entry.page);
    return pages;
  }
};

TEST(RankMatches, PagesWithMoreTermsOutrankOthers) {
  Ranking ranking(DatedPages({0, 0, 0}));
  ranking.Add(0, 250);
  ranking.Add(1, 1);
  ranking.Add(1, 1, {1, 0, 0, false});
  ASSERT_EQ(ranking.Rank(2), RankStatus::kOk);
  EXPECT_EQ(ranking.Listed(), (Numbers{0, 1}));
  EXPECT_EQ(ranking.matches.resultCount, 2);
  EXPECT_EQ(ranking.matches.fullMatchCount, 1);
  EXPECT_FALSE(ranking.matches.resultsTruncated);
  // 250 * 1.3 = 325; (2 - 1) * 250 + 2 = 252, 252 * 1.3 = 327.6
  EXPECT_EQ(ranking.results.entries[0].score, 325u);
  EXPECT_EQ(ranking.results.entries[1].score, 328u);
  EXPECT_EQ(ranking.results.entries[1].termsMatched, 2u);
}

TEST(RankMatches, AllPagesOfTheTopBucketAreListed) {
  Ranking ranking(DatedPages({0, 0, 0, 0}));
  ranking.site.settings.MaxResultsPerQuery = 1;
  for (uint32_t page : {0u, 2u, 3u}) ranking.Add(page, 50);
  ranking.Add(1, 40);
  ASSERT_EQ(ranking.Rank(1), RankStatus::kOk);
  EXPECT_EQ(ranking.Listed(), (Numbers{0, 2, 3}));
  EXPECT_EQ(ranking.matches.resultCount, 4);
  EXPECT_TRUE(ranking.matches.resultsTruncated);
}

TEST(RankMatches, CapKeepsWholeBuckets) {
  const struct {
    const char* what;
    int32_t sort;
    int32_t most;
    std::vector<uint32_t> dates;
    Numbers listed;
    bool truncated;
  } cases[] = {
      {"newest first", 1, 2, {100, 300, 200, 400}, {1, 3}, true},
      {"oldest first", 2, 2, {100, 300, 200, 400}, {0, 2}, true},
      {"another sort is cut like newest first", 3, 2, {100, 300, 200, 400}, {1, 3}, true},
      {"equal dates stay together", 1, 1, {300, 300, 200}, {0, 1}, true},
      {"equal oldest dates stay together", 2, 1, {300, 200, 200}, {1, 2}, true},
      {"room for all", 1, 4, {100, 300, 200, 400}, {0, 1, 2, 3}, false},
      {"no room", 1, 0, {100, 300}, {}, true},
      // A range of 20000 has width 2: half of 19997 is rounded up to the last bucket, 9999, which
      // also takes the quotient 10000.
      {"dates that share a bucket stay together",
       1,
       1,
       {0, 19996, 19997, 19998, 20000},
       {2, 3, 4},
       true},
      {"the oldest date has a bucket of its own", 2, 1, {0, 1, 2, 3, 20000}, {0}, true},
      {"rounded up, two dates share the next", 2, 2, {0, 1, 2, 3, 20000}, {0, 1, 2}, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Ranking ranking(DatedPages(c.dates));
    ranking.site.settings.MaxResultsPerQuery = c.most;
    ranking.request.sort = c.sort;
    for (uint32_t page = 0; page < c.dates.size(); ++page) ranking.Add(page, 10);
    ASSERT_EQ(ranking.Rank(1), RankStatus::kOk);
    EXPECT_EQ(ranking.Listed(), c.listed);
    EXPECT_EQ(ranking.matches.resultsTruncated, c.truncated);
    EXPECT_EQ(ranking.matches.resultCount, static_cast<int32_t>(c.dates.size()));
  }
}

TEST(RankMatches, DateSortLeavesTheScoresAlone) {
  Ranking ranking(DatedPages({5, 6}));
  ranking.request.sort = 1;
  ranking.Add(0, 100);
  ranking.Add(0, 100, {1, 0, 0, false});
  ASSERT_EQ(ranking.Rank(1), RankStatus::kOk);
  EXPECT_EQ(ranking.results.entries[0].score, 260u);  // 200 * 1.3
}

TEST(RankMatches, ExclusionOfEverythingSkipsThePass) {
  Ranking ranking(DatedPages({0, 0}));
  ranking.Add(0, 50);
  ranking.Add(1, 50, {1, 0, 1, true});
  // Kept: page 0 is left, but the count is 0.
  EXPECT_EQ(ranking.matches.resultCount, 0);
  ASSERT_EQ(ranking.Rank(1), RankStatus::kOk);
  EXPECT_EQ(ranking.Listed(), Numbers{});
  EXPECT_EQ(ranking.matches.resultCount, 0);
}

TEST(RankMatches, CountBelowZeroDoesNotSkipThePass) {
  Ranking ranking(DatedPages({0, 0, 0}));
  ranking.Add(0, 50);
  ranking.Add(1, 50, {1, 0, 1, true});
  ranking.Add(2, 50, {1, 0, 1, true});
  EXPECT_EQ(ranking.matches.resultCount, -1);
  ASSERT_EQ(ranking.Rank(1), RankStatus::kOk);
  EXPECT_EQ(ranking.Listed(), Numbers{0});
  EXPECT_EQ(ranking.matches.resultCount, 1);
}

TEST(RankMatches, PagesWithBothWordsAreNotListedWhenOneIsExcluded) {
  Ranking ranking(DatedPages({0, 0, 0}));
  ranking.Add(0, 50);  // b
  ranking.Add(1, 50);
  ranking.Add(1, 50, {1, 0, 1, true});  // -a
  ASSERT_EQ(ranking.Rank(1), RankStatus::kOk);
  EXPECT_EQ(ranking.Listed(), Numbers{0});
  EXPECT_EQ(ranking.matches.fullMatchCount, 1);
}

TEST(RankMatches, AndModeAsksForEveryEffectiveTerm) {
  for (int32_t andMode : {0, 1, 2}) {
    SCOPED_TRACE(andMode);
    Ranking ranking(DatedPages({0, 0}));
    ranking.request.andMode = andMode;
    ranking.Add(0, 50);
    ranking.Add(1, 50);
    ranking.Add(1, 50, {1, 0, 0, false});
    ASSERT_EQ(ranking.Rank(2), RankStatus::kOk);
    EXPECT_EQ(ranking.Listed(), andMode == 1 ? Numbers{1} : (Numbers{0, 1}));
    EXPECT_EQ(ranking.matches.fullMatchCount, 1);
  }
}

TEST(RankMatches, SiteRestrictionOnEveryPage) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4")
      .Page(NewPage("http://a.example/Docs/1.html"))
      .Page(NewPage("http://a.example/blog/2.html"))
      .Page(NewPage("http://a.example/3.html?docs"));
  Ranking ranking(builder);
  ranking.everyPage = true;
  ranking.restriction = {true, "docs"};
  ASSERT_EQ(ranking.Rank(0), RankStatus::kOk);
  EXPECT_EQ(ranking.Listed(), (Numbers{0, 2}));
  EXPECT_EQ(ranking.matches.resultCount, 2);
  EXPECT_EQ(ranking.matches.fullMatchCount, 2);
  EXPECT_EQ(ranking.results.entries[0].score, 1u);
  EXPECT_EQ(ranking.results.entries[0].termsMatched, 1u);
}

TEST(RankMatches, InvalidCategoryIsTold) {
  IndexBuilder builder;
  PageFields page = NewPage("a.html");
  page.categoryBits = "\x01";
  builder.Set("DictIDLen", "4").Page(page);
  Ranking ranking(builder);
  support::DefineCategories(ranking.site.settings, std::vector<std::string>(9, "name"));
  ranking.site.settings.NumCatBytes = 1;
  const int32_t selected[] = {8};
  ranking.request.categories = selected;
  ranking.Add(0, 10);
  EXPECT_EQ(ranking.Rank(1), RankStatus::kInvalidCategory);
}

TEST(RankMatches, PositionsAreCopied) {
  Ranking ranking(DatedPages({0}));
  for (uint64_t position : {11u, 22u, 33u}) {
    ASSERT_TRUE(
        TermRecords(ranking.matches, ranking.site.files.pages, {}, 0, 9).Add({5, 0, 0, position}));
  }
  ASSERT_EQ(ranking.Rank(1), RankStatus::kOk);
  ASSERT_EQ(ranking.results.size(), 1);
  const ResultEntry entry = ShownEntry(ranking.results.entries[0], ranking.matches);
  EXPECT_EQ(entry.firstPosition, 11u);
  EXPECT_EQ(entry.secondPosition, 22u);
  EXPECT_EQ(entry.thirdPosition, 33u);
}

TEST(RankMatches, FailedAllocations) {
  for (int32_t number : {1, 2}) {
    Ranking ranking(DatedPages({0}));
    ranking.Add(0, 10);
    ranking.Prepare();
    g_failAllocationNumber = number;
    EXPECT_EQ(ranking.RankPrepared(1), RankStatus::kNoMemory);
    g_failAllocationNumber = 0;
  }
}

void FillResults(ResultList& list, const std::vector<uint32_t>& scores) {
  ASSERT_TRUE(list.entries.TryAllocate(scores.size()));
  for (uint32_t i = 0; i < scores.size(); ++i) {
    list.entries[i].page = i;
    list.entries[i].score = scores[i];
  }
}

TEST(SortResults, Table) {
  const struct {
    const char* what;
    int32_t sort;
    bool useDateTime;
    std::vector<uint32_t> dates;
    std::vector<uint32_t> scores;
    Numbers order;
  } cases[] = {
      {"by score", 0, true, {1, 2, 3}, {10, 30, 20}, {1, 2, 0}},
      {"scores are unsigned", 0, true, {1, 2}, {1, 0xFFFFFFFF}, {1, 0}},
      {"newest first", 1, true, {100, 300, 200}, {1, 2, 3}, {1, 2, 0}},
      {"oldest first", 2, true, {100, 300, 200}, {1, 2, 3}, {0, 2, 1}},
      {"dates are signed, newest first", 1, true, {0xFFFFFFFF, 1}, {1, 1}, {1, 0}},
      {"dates are signed, oldest first", 2, true, {1, 0xFFFFFFFF}, {1, 1}, {1, 0}},
      {"equal dates by score, newest first", 1, true, {5, 5, 9}, {1, 2, 0}, {2, 1, 0}},
      {"equal dates by score, oldest first", 2, true, {5, 5, 9}, {1, 2, 0}, {1, 0, 2}},
      {"without dates the sort is by score", 1, false, {1, 2, 3}, {10, 30, 20}, {1, 2, 0}},
      {"without dates, oldest first", 2, false, {1, 2, 3}, {10, 30, 20}, {1, 2, 0}},
      {"another number is by score", 3, true, {1, 2, 3}, {10, 30, 20}, {1, 2, 0}},
      {"a negative number is by score", -1, true, {1, 2, 3}, {10, 30, 20}, {1, 2, 0}},
      {"one result", 1, true, {1}, {1}, {0}},
      {"no result", 1, true, {1}, {}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    LoadedSite site(DatedPages(c.dates));
    ResultList list;
    FillResults(list, c.scores);
    SortResults(list, site.files.pages, c.sort, c.useDateTime, INT32_MAX);
    Numbers order;
    for (const RankedPage& entry : list.entries) order.push_back(entry.page);
    EXPECT_EQ(order, c.order);
  }
}

TEST(SortResults, EqualEntriesComeInTheSameOrderEveryTime) {
  LoadedSite site(DatedPages({1}));
  Numbers orders[2];
  for (Numbers& order : orders) {
    ResultList list;
    FillResults(list, std::vector<uint32_t>(300, 7));
    SortResults(list, site.files.pages, 0, true, INT32_MAX);
    for (const RankedPage& entry : list.entries) order.push_back(entry.page);
  }
  EXPECT_EQ(orders[0], orders[1]);
  EXPECT_EQ(orders[0].size(), 300u);
}

TEST(SortResults, LongList) {
  LoadedSite site(DatedPages({1}));
  std::vector<uint32_t> scores;
  for (uint32_t i = 0; i < 1000; ++i) scores.push_back(i * 7919 % 1009);
  ResultList list;
  FillResults(list, scores);
  SortResults(list, site.files.pages, 0, true, INT32_MAX);
  ASSERT_EQ(list.size(), 1000);
  for (size_t i = 0; i < list.entries.size(); ++i) {
    const RankedPage& entry = list.entries[i];
    EXPECT_EQ(entry.score, scores[entry.page]);
    if (i > 0) {
      EXPECT_GE(list.entries[i - 1].score, entry.score);
    }
  }
}

// Rows as their pages and scores, in the order of the list once it is sorted.
std::vector<std::pair<uint32_t, uint32_t>> BestOf(const std::vector<uint32_t>& scores, size_t keeps,
                                                  size_t most) {
  BestRows best;
  EXPECT_TRUE(best.TryAllocate(keeps));
  for (uint32_t page = 0; page < scores.size(); ++page) best.Offer({page, scores[page], 1});
  OwnedArray<RankedPage> rows;
  EXPECT_TRUE(best.Take(most, rows));
  std::sort(rows.begin(), rows.end(), BestRows::GoesBefore);
  std::vector<std::pair<uint32_t, uint32_t>> result;
  for (const RankedPage& row : rows) result.emplace_back(row.page, row.score);
  return result;
}

TEST(BestRows, TheHighestScoresAndOfEqualOnesTheFirstPages) {
  using Rows = std::vector<std::pair<uint32_t, uint32_t>>;
  EXPECT_EQ(BestOf({5, 9, 5, 7, 9, 5}, 3, 100), (Rows{{1, 9}, {4, 9}, {3, 7}}));
  EXPECT_EQ(BestOf({5, 9, 5, 7, 9, 5}, 4, 100), (Rows{{1, 9}, {4, 9}, {3, 7}, {0, 5}}));
  EXPECT_EQ(BestOf({3, 3, 3, 4}, 2, 100), (Rows{{3, 4}, {0, 3}}));
}

TEST(BestRows, FewerThanAskedFor) {
  using Rows = std::vector<std::pair<uint32_t, uint32_t>>;
  EXPECT_EQ(BestOf({2, 8}, 5, 100), (Rows{{1, 8}, {0, 2}}));
  EXPECT_EQ(BestOf({}, 5, 100), Rows{});
}

TEST(BestRows, NoMoreThanTheLimitLeaves) {
  using Rows = std::vector<std::pair<uint32_t, uint32_t>>;
  EXPECT_EQ(BestOf({2, 8, 6}, 3, 2), (Rows{{1, 8}, {2, 6}}));
  EXPECT_EQ(BestOf({2, 8, 6}, 3, 0), Rows{});
}

}  // namespace
}  // namespace vela
