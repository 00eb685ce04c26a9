// matches.h: the pages that the terms of a query match, gathered term by term.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "format/word_weight.h"
#include "index/page_info.h"
#include "index/word_map.h"
#include "search/page_match.h"
#include "search/page_weight.h"
#include "settings/settings.h"
#include "text/numbers.h"
#include "text/owned_array.h"

namespace vela {

// All pages of the index and what is counted over them.
struct Matches {
  PageMatches pages;
  PageWeights weights;           // only with Ranking
  OwnedArray<uint64_t> touched;  // one bit a page that a record touched
  int32_t resultCount = 0;       // pages found; during the terms, also counted down by exclusions
  int32_t fullMatchCount = 0;    // accepted pages that match every effective term
  uint32_t maxTermsMatched = 0;  // the ranges of the sort keys
  uint32_t maxScore = 0;
  int32_t maxDate = 0;
  int32_t minDate = 0;
  bool limitReached = false;      // a limit stopped the search: there may be more
  bool resultsTruncated = false;  // some accepted pages are not in the list
};

// Where a term stands among the terms of the query.
struct TermPlace {
  int32_t index = 0;     // in the term list, from 0
  int32_t skipped = 0;   // terms passed over so far
  int32_t excluded = 0;  // exclusions and site restrictions so far
  bool isExclusion = false;
  bool countsFoundOnly = false;  // an exclusion counts down only pages that had been found
  bool hasSeveralWords = false;  // a pattern
  int32_t listIndex = 0;         // in the term list, from 0, with AmendedAnswers as without
};

// Makes the record of every page. False when the memory cannot be had.
[[nodiscard]] bool AllocateMatches(Matches& matches, int32_t pageCount);
// What Ranking needs besides, for a query of so many terms. False likewise.
[[nodiscard]] bool AllocateWeights(Matches& matches, int32_t termCount);

// A score times a page's boost, in tenths, rounded; a boost of 0 leaves it.
inline uint32_t BoostedScore(uint32_t score, uint8_t boost) {
  if (boost == 0) return score;
  // Half a tenth cannot be missed by rounding here: integers are exact.
  return (score * boost + 5) / 10;
}

// Adds the records of the words of one term to their pages.
class TermRecords {
 public:
  // `sort` and `maxContextKeywords` are those of the request and the settings. `matches` and
  // `pages` must outlive it.
  TermRecords(Matches& matches, const PageTable& pages, const TermPlace& term, int32_t sort,
              int32_t maxContextKeywords);

  // False when the record names a page that is not in the index.
  [[nodiscard]] bool Add(const WordMapRecord& record) {
    if (record.page >= matches_.pages.size()) return false;
    uint32_t score = weighs_ ? WeightOf(record.score) : record.score;
    if (pages_.hasBoosts) score = BoostedScore(score, PageBoost(pages_, record.page));
    if (score == 0) return true;
    uint64_t& touched = matches_.touched[record.page / 64];
    const uint64_t bit = uint64_t{1} << record.page % 64;
    if ((touched & bit) != 0 || !isPlain_) return AddToPage(record, score);
    // The page of most records: no term has met it before.
    touched |= bit;
    if (weighs_) weights_.AddFirst(record, score);
    matches_.pages.Touch(record.page) = {
        .score = score,
        .termsMatched = 1,
        .firstPositionLow = static_cast<uint32_t>(record.position),
        .firstPositionHigh = static_cast<uint8_t>(record.position >> 32),
        .proximityMask = record.proximity,
        .termsInOrder = isFirstInOrder_ ? uint16_t{1} : uint16_t{0}};
    matches_.resultCount = WrapAdd32(matches_.resultCount, 1);
    matches_.maxTermsMatched = std::max(matches_.maxTermsMatched, 1U);
    matches_.maxScore = std::max(matches_.maxScore, score);
    return true;
  }

 private:
  bool AddToPage(const WordMapRecord& record, uint32_t score);

  Matches& matches_;
  const PageTable& pages_;
  const TermPlace& term_;
  const int32_t sort_;
  const int32_t maxContextKeywords_;
  const bool weighs_;          // with Ranking
  const bool isPlain_;         // neither an exclusion nor are results sorted by date
  const bool isFirstInOrder_;  // of a page that no term before matched
  TermWeights weights_;        // while weighs_
};

// The further position of the page, 0 or 1, where the snippets go on; 0 for nowhere.
uint64_t FurtherPosition(const Matches& matches, uint32_t page, int32_t number);

}  // namespace vela
