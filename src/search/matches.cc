#include "search/matches.h"

#include <algorithm>

#include "search/query.h"
#include "search/search_request.h"

namespace vela {

namespace {

// Above this a page gains 1 with every further record.
constexpr uint32_t kFullScoreLimit = 10000;

// The largest number of pages whose records fit in the memory of a 32-bit process.
constexpr int32_t kBytesPerPage = 40;
constexpr int32_t kPageLimit = INT32_MAX / kBytesPerPage;

// No query holds so many terms that their number in a record comes round to 0.
static_assert(sizeof(QueryText) < UINT16_MAX);

void TrackKeyRange(Matches& matches, const PageMatch& match, int32_t sort, int32_t date) {
  if (sort <= kSortByRelevance) {
    matches.maxTermsMatched = std::max(matches.maxTermsMatched, match.termsMatched);
    matches.maxScore = std::max(matches.maxScore, match.score);
    return;
  }
  matches.maxDate = std::max(matches.maxDate, date);
  matches.minDate = matches.resultCount == 1 ? date : std::min(matches.minDate, date);
}

void SetBit(OwnedArray<uint64_t>& bits, uint32_t page) {
  bits[page / 64] |= uint64_t{1} << (page % 64);
}

void Store(uint8_t (&bytes)[kWordMapPositionWidth], uint64_t position) {
  for (uint8_t& byte : bytes) {
    byte = static_cast<uint8_t>(position);
    position >>= 8;
  }
}

uint64_t Load(const uint8_t (&bytes)[kWordMapPositionWidth]) {
  uint64_t position = 0;
  for (size_t i = 0; i < sizeof bytes; ++i) position |= uint64_t{bytes[i]} << (8 * i);
  return position;
}

void AddPosition(Matches& matches, uint32_t page, uint64_t position) {
  FurtherPositions& further = matches.pages.TouchFurther(page);
  if (Load(further.second) == 0) {
    Store(further.second, position);
  } else if (Load(further.third) == 0) {
    Store(further.third, position);
  }
}

}  // namespace

bool AllocateMatches(Matches& matches, int32_t pageCount) {
  if (pageCount < 0 || pageCount > kPageLimit) return false;
  const auto pages = static_cast<size_t>(pageCount);
  return matches.pages.TryAllocate(pages) && matches.touched.TryAllocate((pages + 63) / 64);
}

bool AllocateWeights(Matches& matches, int32_t termCount) {
  return matches.weights.TryAllocate(matches.pages.size(), termCount > 1);
}

uint64_t FurtherPosition(const Matches& matches, uint32_t page, int32_t number) {
  const FurtherPositions& further = matches.pages.Further(page);
  return Load(number == 0 ? further.second : further.third);
}

TermRecords::TermRecords(Matches& matches, const PageTable& pages, const TermPlace& term,
                         int32_t sort, int32_t maxContextKeywords)
    : matches_(matches),
      pages_(pages),
      term_(term),
      sort_(sort),
      maxContextKeywords_(maxContextKeywords),
      weighs_(!matches.weights.empty()),
      isPlain_(!term.isExclusion && sort <= kSortByRelevance),
      isFirstInOrder_(term.index == 0 || term.index == term.skipped + term.excluded) {
  if (weighs_) weights_ = matches.weights.StartTerm(term.listIndex, term.hasSeveralWords);
}

bool TermRecords::AddToPage(const WordMapRecord& record, uint32_t score) {
  SetBit(matches_.touched, record.page);
  PageMatch& match = matches_.pages.Touch(record.page);
  if (weighs_) score = weights_.Add(record, score, match.proximityMask);
  if (term_.isExclusion) {
    // Kept: counts down whether or not the page had been counted (golden
    // search/exclusion_counts_down_to_nothing).
    const bool counts = match.score != 0 || !term_.countsFoundOnly;
    match.score = 0;
    if (counts) matches_.resultCount = WrapSub32(matches_.resultCount, 1);
  } else if (match.score != 0) {
    match.score += match.score <= kFullScoreLimit ? score : 1;
    const bool roomForContext =
        maxContextKeywords_ > 0 && match.termsMatched < static_cast<uint32_t>(maxContextKeywords_);
    if (match.termsMatched != 0 && roomForContext) {
      AddPosition(matches_, record.page, record.position);
    }
    if (!weighs_) match.proximityMask &= record.proximity;
  } else {
    matches_.resultCount = WrapAdd32(matches_.resultCount, 1);
    match.score = score;
    match.firstPositionLow = static_cast<uint32_t>(record.position);
    match.firstPositionHigh = static_cast<uint8_t>(record.position >> 32);
    if (!weighs_) match.proximityMask = record.proximity;
  }
  ++match.termsMatched;
  const int32_t date = sort_ <= kSortByRelevance ? 0 : PageDateTime(pages_, record.page);
  TrackKeyRange(matches_, match, sort_, date);

  const auto index = static_cast<uint32_t>(term_.index);
  const auto inOrder = static_cast<uint32_t>(term_.index - term_.skipped - term_.excluded);
  const uint32_t reached = match.termsInOrder;
  if (reached == index || reached == inOrder)
    match.termsInOrder = static_cast<uint16_t>(reached + 1);
  return true;
}

}  // namespace vela
