#include "search/matches.h"

#include <algorithm>

#include "search/query.h"
#include "search/search_request.h"
#include "text/numbers.h"

namespace vela {

namespace {

// Above this a page gains 1 with every further record.
constexpr uint32_t kFullScoreLimit = 10000;

// The largest number of pages whose records fit in the memory of a 32-bit process.
constexpr int32_t kBytesPerPage = 40;
constexpr int32_t kPageLimit = INT32_MAX / kBytesPerPage;

// More terms than a query can hold.
constexpr uint32_t kTermsLimit = 0xFFFF;
static_assert(sizeof(QueryText) < kTermsLimit);

void TrackKeyRange(Matches& matches, const PageMatch& match, int32_t sort, int32_t date) {
  if (sort <= kSortByRelevance) {
    matches.maxTermsMatched = std::max(matches.maxTermsMatched, match.termsMatched);
    matches.maxScore = std::max(matches.maxScore, match.score);
    return;
  }
  matches.maxDate = std::max(matches.maxDate, date);
  matches.minDate = matches.resultCount == 1 ? date : std::min(matches.minDate, date);
}

void AddPosition(FurtherPositions& further, uint64_t position) {
  if (further.second == 0) {
    further.second = position;
  } else if (further.third == 0) {
    further.third = position;
  }
}

}  // namespace

bool AllocateMatches(Matches& matches, int32_t pageCount) {
  if (pageCount < 0 || pageCount > kPageLimit) return false;
  const auto pages = static_cast<size_t>(pageCount);
  return matches.pages.TryAllocate(pages) && matches.further.TryAllocate(pages) &&
         matches.touched.TryAllocate((pages + 63) / 64);
}

uint32_t BoostedScore(uint32_t score, uint8_t boost) {
  if (boost == 0) return score;
  // Half a tenth cannot be missed by rounding here: integers are exact.
  return (score * boost + 5) / 10;
}

bool AddMatch(Matches& matches, const PageTable& pages, const WordMapRecord& record,
              const TermPlace& term, int32_t sort, int32_t maxContextKeywords) {
  if (record.page >= matches.pages.size()) return false;
  const uint32_t score = BoostedScore(record.score, PageBoost(pages, record.page));
  if (score == 0) return true;

  PageMatch& match = matches.pages[record.page];
  matches.touched[record.page / 64] |= uint64_t{1} << (record.page % 64);
  if (term.isExclusion) {
    // Kept: counts down whether or not the page had been counted (golden
    // search/exclusion_counts_down_to_nothing).
    match.score = 0;
    matches.resultCount = WrapSub32(matches.resultCount, 1);
  } else if (match.score != 0) {
    match.score += match.score <= kFullScoreLimit ? score : 1;
    const bool roomForContext =
        maxContextKeywords > 0 && match.termsMatched < static_cast<uint32_t>(maxContextKeywords);
    if (match.termsMatched != 0 && roomForContext) {
      AddPosition(matches.further[record.page], record.position);
    }
    match.proximityMask &= record.proximity;
  } else {
    matches.resultCount = WrapAdd32(matches.resultCount, 1);
    match.score = score;
    match.firstPosition = record.position & kPositionLimit;
    match.proximityMask = record.proximity;
  }
  ++match.termsMatched;
  const int32_t date = sort <= kSortByRelevance ? 0 : PageDateTime(pages, record.page);
  TrackKeyRange(matches, match, sort, date);

  const auto index = static_cast<uint32_t>(term.index);
  const auto inOrder = static_cast<uint32_t>(term.index - term.skipped - term.excluded);
  const uint32_t reached = match.termsInOrder;
  if (reached == index || reached == inOrder) match.termsInOrder = (reached + 1) & kTermsLimit;
  return true;
}

}  // namespace vela
