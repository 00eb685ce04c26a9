// ranking.h: from matched pages to the sorted list of results.
#pragma once

#include <algorithm>
#include <cstdint>

#include "index/page_info.h"
#include "search/filters.h"
#include "search/matches.h"
#include "search/search_request.h"
#include "search/weighed_score.h"
#include "settings/settings.h"
#include "text/owned_array.h"

namespace vela {

// One row of the result list. There are many more than are shown.
struct RankedPage {
  uint32_t page = 0;
  uint32_t score = 0;  // final relevance, as shown
  uint32_t termsMatched = 0;
};

// The pages that may be shown: all within the limit of results, or as many of the best as are
// shown.
struct ResultList {
  OwnedArray<RankedPage> entries;
  int32_t size() const { return static_cast<int32_t>(entries.size()); }
};

// A row that is shown, with where its snippets begin and go on.
struct ResultEntry : RankedPage {
  uint64_t firstPosition = 0;
  uint64_t secondPosition = 0;
  uint64_t thirdPosition = 0;
};

// The row with the positions of its page; without words searched for, all are 0.
ResultEntry ShownEntry(const RankedPage& row, const Matches& matches);

// Pages by their sort key, in buckets of equal width, so that the best can be taken without sorting
// all of them. A bucket is taken whole or not at all.
inline constexpr int32_t kBucketCount = 10000;
struct KeyHistogram {
  OwnedArray<uint32_t> counts;  // kBucketCount, or as many as the keys need
  int64_t keyMin = 0;
  int64_t width = 1;
  int32_t firstTaken = 0;  // the range of buckets taken
  int32_t lastTaken = -1;
  uint32_t total = 0;  // pages in them
};

// The bucket of a key: its distance from keyMin over the width, rounded up, at most the last one. A
// key below keyMin goes to bucket 0.
inline int32_t BucketOf(const KeyHistogram& histogram, int64_t key) {
  const int64_t distance = key - histogram.keyMin;
  const auto last = static_cast<int64_t>(histogram.counts.size()) - 1;
  if (distance <= 0) return 0;
  if (histogram.width == 1) {  // as it mostly is, and dividing takes its time
    return static_cast<int32_t>(std::min(distance, last));
  }
  const int64_t bucket = (distance + histogram.width - 1) / histogram.width;
  return static_cast<int32_t>(std::min(bucket, last));
}

// Buckets from keyMin to keyMax; where no key is beyond keyMax, there are none for such. False when
// memory is out.
[[nodiscard]] bool StartHistogram(KeyHistogram& histogram, int64_t keyMin, int64_t keyMax,
                                  bool hasKeysBeyond = true);

// Takes buckets, from the smallest key on with `oldestFirst` and from the largest otherwise, while
// fewer than `most` pages are taken.
void TakeBuckets(KeyHistogram& histogram, int32_t most, bool oldestFirst);

// The final score: the page's score times a factor that grows with the nearness of the terms and
// with every term matched beyond the first. `weightProximity` is the setting.
// Modulo 2^32, or the nearest number that can be shown where it `saturates`.
uint32_t FinalScore(const PageMatch& match, int32_t weightProximity, bool saturates);

enum class RankStatus { kOk, kNoMemory, kInvalidCategory };

// What the pages are ranked by.
struct RankInput {
  const Settings& settings;
  const SearchRequest& request;
  const PageTable& pages;
  const QueryWeights* weights = nullptr;  // not owned; null without Ranking
  int32_t effectiveTerms = 0;             // terms that a page can match: none skipped, no exclusion
  bool everyPage = false;                 // no word is searched for: every page is a candidate
  int64_t shown = INT64_MAX;              // rows, from the first one on, that are asked for
};

// The rows that go before all others offered, which come in page order.
class BestRows {
 public:
  [[nodiscard]] bool TryAllocate(size_t most) { return rows_.TryAllocate(most); }

  void Offer(const RankedPage& row) {
    if (count_ < rows_.size()) {
      rows_[count_++] = row;
      if (count_ == rows_.size()) std::make_heap(rows_.begin(), rows_.end(), GoesBefore);
    } else if (row.score > rows_[0].score) {  // an equal one comes behind
      std::pop_heap(rows_.begin(), rows_.end(), GoesBefore);
      rows_[count_ - 1] = row;
      std::push_heap(rows_.begin(), rows_.end(), GoesBefore);
    }
  }

  // Up to `most` of the rows, the best ones, in any order, in `rows`. False when memory is out.
  [[nodiscard]] bool Take(size_t most, OwnedArray<RankedPage>& rows);

  // By score, equal ones by page.
  static bool GoesBefore(const RankedPage& a, const RankedPage& b) {
    return a.score != b.score ? a.score > b.score : a.page < b.page;
  }

 private:
  OwnedArray<RankedPage> rows_;  // a heap, the last one on top, once it is full
  size_t count_ = 0;
};

// Applies the filters to every candidate, counts the pages accepted into `matches`, and lists the
// best of them, unsorted, in `results`.
[[nodiscard]] RankStatus RankMatches(Matches& matches, PageFilters& filters, const RankInput& input,
                                     ResultList& results);

// Brings the first `shown` results of the list into the order that the request asks for, ties by
// page number; those behind them stay in any.
void SortResults(ResultList& results, const PageTable& pages, int32_t sort, bool useDateTime,
                 int64_t shown);

}  // namespace vela
