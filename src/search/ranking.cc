#include "search/ranking.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace vela {

namespace {

constexpr float kBaseFactor = 1.3f;
constexpr float kProximityMultiplier = 1.7f;
// Beyond this many terms the factor grows by 1 a term instead of by a power.
constexpr uint32_t kPowerTermLimit = 10;

bool SortsByDate(int32_t sort) { return sort > kSortByRelevance; }

int64_t KeyOf(const PageMatch& match, const PageTable& pages, uint32_t page, int32_t sort) {
  return SortsByDate(sort) ? int64_t{PageDateTime(pages, page)} : int64_t{match.score};
}

// Calls `visit(page)` for every page that may be a result, in page order, until it gives false.
template <typename Visit>
void ForEachCandidate(const Matches& matches, bool everyPage, const Visit& visit) {
  const size_t pageCount = matches.pages.size();
  for (size_t first = 0; first < pageCount; first += 64) {
    const size_t rest = pageCount - first;
    const uint64_t all = rest < 64 ? (uint64_t{1} << rest) - 1 : ~uint64_t{0};
    for (uint64_t bits = everyPage ? all : matches.touched[first / 64]; bits != 0;
         bits &= bits - 1) {
      if (!visit(static_cast<uint32_t>(first + static_cast<size_t>(std::countr_zero(bits)))))
        return;
    }
  }
}

// Whether the page passes every filter. Kept: the filters run in this order, and the counts of
// selected categories include pages that the date range rejects afterwards (golden
// search/category_counts_ignore_the_date_range).
RankStatus TestFilters(PageMatch& match, uint32_t page, PageFilters& filters,
                       const RankInput& input, bool& accepted) {
  accepted = false;
  if (filters.site.active) {
    if (!PassesSiteRestriction(filters, page)) return RankStatus::kOk;
    if (input.everyPage) {
      ++match.score;
      ++match.termsMatched;
    }
  }
  const int32_t passed = PassedMetaConstraints(filters, page);
  if (passed < 0) return RankStatus::kOk;
  if (input.everyPage) {
    if (input.request.metaOnly && passed == 0) return RankStatus::kOk;
    match.score += static_cast<uint32_t>(passed);
    match.termsMatched += static_cast<uint32_t>(passed);
  }
  const bool matchesAll = static_cast<int32_t>(match.termsInOrder) >= input.effectiveTerms;
  if (input.request.andMode == 1 && !matchesAll) return RankStatus::kOk;
  switch (TestSelectedCategories(filters, page)) {
    case CategoryTest::kOut:
      return RankStatus::kOk;
    case CategoryTest::kInvalid:
      return RankStatus::kInvalidCategory;
    case CategoryTest::kIn:
      break;
  }
  accepted = PassesDateRange(filters, page);
  return RankStatus::kOk;
}

// Whether every page that a term matched is a result.
bool AcceptsAll(const PageFilters& filters, const RankInput& input) {
  return !input.everyPage && input.request.andMode != 1 && PassesAll(filters);
}

// Whether the words of the query weigh: where every page is a candidate there are none.
bool Weighs(const RankInput& input) { return input.weights != nullptr && !input.everyPage; }

bool SaturatesScores(const Settings& settings) { return settings.AmendedAnswers == 1; }

// Adds the highest score once for every term matched beyond the first.
void AddTerms(PageMatch& match, uint32_t maxScore, bool saturates) {
  const uint64_t score = match.score + uint64_t{match.termsMatched - 1} * maxScore;
  match.score = static_cast<uint32_t>(saturates ? std::min<uint64_t>(score, UINT32_MAX) : score);
}

// Rows that are asked for at once, and are then picked out on the way.
constexpr int64_t kBestRowLimit = 1000;

// Whether the rows that are asked for are known by their keys.
bool PicksBest(const RankInput& input) {
  return Weighs(input) && !SortsByDate(input.request.sort) && 0 < input.shown &&
         input.shown <= kBestRowLimit;
}

// The range of the keys, as the terms have met them.
bool StartHistogramFor(KeyHistogram& histogram, const Matches& matches, const RankInput& input) {
  if (SortsByDate(input.request.sort)) {
    return StartHistogram(histogram, matches.minDate, matches.maxDate);
  }
  if (Weighs(input)) {
    return StartHistogram(histogram, 0, HighestWeighedScore(*input.weights, matches.maxScore),
                          false);
  }
  // Where every page is a candidate, its score was not seen by the terms.
  return StartHistogram(histogram, 0, int64_t{matches.maxTermsMatched} * matches.maxScore,
                        input.everyPage);
}

RankStatus ListResults(Matches& matches, PageFilters& filters, const RankInput& input,
                       const KeyHistogram& histogram, ResultList& results) {
  if (!results.entries.TryAllocate(histogram.total)) return RankStatus::kNoMemory;
  const bool countsCategories = CountsInAllCategories(filters);
  const bool weighs = Weighs(input);
  const int32_t sort = input.request.sort;
  const size_t total = results.entries.size();
  size_t count = 0;
  bool isTruncated = false;
  RankStatus status = RankStatus::kOk;
  ForEachCandidate(matches, input.everyPage, [&](uint32_t page) {
    const PageMatch& match = matches.pages[page];
    if (match.score == 0) return true;
    if (countsCategories && !CountInAllCategories(filters, page)) {
      status = RankStatus::kInvalidCategory;
      return false;
    }
    const int32_t bucket = BucketOf(histogram, KeyOf(match, input.pages, page, sort));
    if (bucket < histogram.firstTaken || bucket > histogram.lastTaken) {
      isTruncated = true;
      return true;
    }
    if (count == total) return true;
    const uint32_t score =
        weighs ? match.score
               : FinalScore(match, input.settings.WeightProximity, SaturatesScores(input.settings));
    results.entries[count++] = {page, score, match.termsMatched};
    return true;
  });
  if (isTruncated) matches.resultsTruncated = true;
  // Every page of the buckets taken has been met: the list is full.
  if (count < results.entries.size()) results.entries.Release();
  return status;
}

RankStatus ListBest(Matches& matches, PageFilters& filters, const KeyHistogram& histogram,
                    BestRows& best, ResultList& results) {
  matches.resultsTruncated = histogram.total < static_cast<uint32_t>(matches.resultCount);
  RankStatus status = RankStatus::kOk;
  if (CountsInAllCategories(filters)) {
    ForEachCandidate(matches, false, [&](uint32_t page) {
      if (matches.pages[page].score == 0 || CountInAllCategories(filters, page)) return true;
      status = RankStatus::kInvalidCategory;
      return false;
    });
  }
  if (status != RankStatus::kOk) return status;
  return best.Take(histogram.total, results.entries) ? RankStatus::kOk : RankStatus::kNoMemory;
}

}  // namespace

bool BestRows::Take(size_t most, OwnedArray<RankedPage>& rows) {
  const size_t count = std::min(count_, most);
  rows.Release();
  if (count == 0) return true;
  if (count < count_) std::sort(rows_.begin(), rows_.begin() + count_, GoesBefore);
  if (count < rows_.size() && !rows_.TryResize(count)) return false;
  rows = std::move(rows_);
  return true;
}

ResultEntry ShownEntry(const RankedPage& row, const Matches& matches) {
  return {row, matches.pages[row.page].firstPosition(), FurtherPosition(matches, row.page, 0),
          FurtherPosition(matches, row.page, 1)};
}

bool StartHistogram(KeyHistogram& histogram, int64_t keyMin, int64_t keyMax, bool hasKeysBeyond) {
  const int64_t range = keyMax - keyMin;
  histogram.keyMin = keyMin;
  histogram.width = range > kBucketCount - 1 ? (range + kBucketCount - 1) / kBucketCount : 1;
  const bool isNarrow = !hasKeysBeyond && 0 <= range && range < kBucketCount;
  return histogram.counts.TryAllocate(isNarrow ? static_cast<size_t>(range) + 1 : kBucketCount);
}

void TakeBuckets(KeyHistogram& histogram, int32_t most, bool oldestFirst) {
  histogram.total = 0;
  const auto isFull = [&] { return int64_t{histogram.total} >= most; };
  const auto buckets = static_cast<int32_t>(histogram.counts.size());
  if (oldestFirst) {
    int32_t next = 0;
    for (; next < buckets && !isFull(); ++next) {
      histogram.total += histogram.counts[static_cast<size_t>(next)];
    }
    histogram.firstTaken = 0;
    histogram.lastTaken = next - 1;
    return;
  }
  int32_t next = buckets - 1;
  for (; next >= 0 && !isFull(); --next) {
    histogram.total += histogram.counts[static_cast<size_t>(next)];
  }
  histogram.firstTaken = next + 1;
  histogram.lastTaken = buckets - 1;
}

uint32_t FinalScore(const PageMatch& match, int32_t weightProximity, bool saturates) {
  float multiplier = kProximityMultiplier;
  if (weightProximity != 0) {
    multiplier = static_cast<float>(weightProximity / 10.0 + kProximityMultiplier);
  }
  auto factor = static_cast<float>(match.proximityMask / 255.0 * multiplier + kBaseFactor);
  if (match.termsMatched > kPowerTermLimit) {
    factor = static_cast<float>(std::pow(static_cast<double>(factor), double{kPowerTermLimit}));
    factor += static_cast<float>(match.termsMatched - kPowerTermLimit);
  } else if (match.termsMatched > 1) {
    factor = static_cast<float>(
        std::pow(static_cast<double>(factor), static_cast<double>(match.termsMatched - 1)));
  }
  const double score = static_cast<double>(match.score) * static_cast<double>(factor) + 0.5;
  if (saturates) return static_cast<uint32_t>(std::clamp(score, 0.0, double{UINT32_MAX}));
  // The integer part modulo 2^32; a negative weight can make the factor negative.
  return static_cast<uint32_t>(static_cast<int64_t>(std::clamp(score, -9.0e18, 9.0e18)));
}

RankStatus RankMatches(Matches& matches, PageFilters& filters, const RankInput& input,
                       ResultList& results) {
  KeyHistogram histogram;
  const int32_t sort = input.request.sort;
  // Kept: exclusions may have counted down to 0 although some pages are left, which then are in no
  // result. Their categories are looked at all the same (golden
  // search/exclusion_to_nothing_still_tests_categories).
  if (matches.resultCount == 0 && !input.everyPage) {
    return ListResults(matches, filters, input, histogram, results);
  }
  if (!StartHistogramFor(histogram, matches, input)) return RankStatus::kNoMemory;
  const bool acceptsAll = AcceptsAll(filters, input);
  const bool weighs = Weighs(input);
  const bool picksBest = PicksBest(input);
  BestRows best;
  if (picksBest && !best.TryAllocate(static_cast<size_t>(input.shown))) {
    return RankStatus::kNoMemory;
  }
  int32_t resultCount = 0;
  int32_t fullMatchCount = 0;
  RankStatus status = RankStatus::kOk;
  ForEachCandidate(matches, input.everyPage, [&](uint32_t page) {
    PageMatch& match = matches.pages.Touch(page);
    bool accepted = input.everyPage || (match.score != 0 && match.termsMatched != 0);
    if (accepted && !acceptsAll) {
      status = TestFilters(match, page, filters, input, accepted);
      if (status != RankStatus::kOk) return false;
    }
    if (!accepted) {
      match.score = 0;
      return true;
    }
    if (static_cast<int32_t>(match.termsInOrder) >= input.effectiveTerms) ++fullMatchCount;
    if (weighs) {
      match.score = WeighedScore(*input.weights, matches.weights.At(page), match.score,
                                 [&] { return PageTitleMass(input.pages, page); });
    } else if (!SortsByDate(sort)) {
      AddTerms(match, matches.maxScore, SaturatesScores(input.settings));
    }
    const int32_t bucket = BucketOf(histogram, KeyOf(match, input.pages, page, sort));
    ++histogram.counts[static_cast<size_t>(bucket)];
    ++resultCount;
    if (picksBest) best.Offer({page, match.score, match.termsMatched});
    return true;
  });
  matches.resultCount = resultCount;
  matches.fullMatchCount += fullMatchCount;
  if (status != RankStatus::kOk) return status;
  TakeBuckets(histogram, input.settings.MaxResultsPerQuery, sort == kSortOldestFirst);
  if (picksBest) return ListBest(matches, filters, histogram, best, results);
  return ListResults(matches, filters, input, histogram, results);
}

void SortResults(ResultList& results, const PageTable& pages, int32_t sort, bool useDateTime,
                 int64_t shown) {
  const auto byScore = BestRows::GoesBefore;
  const bool newestFirst = sort == kSortNewestFirst;
  const auto byDate = [&](const RankedPage& a, const RankedPage& b) {
    const int32_t dateA = PageDateTime(pages, a.page);
    const int32_t dateB = PageDateTime(pages, b.page);
    if (dateA != dateB) return newestFirst ? dateA > dateB : dateA < dateB;
    return byScore(a, b);
  };
  RankedPage* const begin = results.entries.begin();
  RankedPage* const end = results.entries.end();
  RankedPage* const last = begin + std::clamp<int64_t>(shown, 0, end - begin);
  if (useDateTime && (newestFirst || sort == kSortOldestFirst)) {
    std::partial_sort(begin, last, end, byDate);
  } else {
    std::partial_sort(begin, last, end, byScore);
  }
}

}  // namespace vela
