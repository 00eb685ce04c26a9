#include "indexer/collect/score.h"

#include <algorithm>
#include <cmath>

#include "format/word_map.h"

namespace vela::indexer {

namespace {

// Scores of a rare word; a common one gets less (Rarity).
constexpr double kText = 90;  // never reached, however often the word occurs
constexpr double kMainHeading = 25;
constexpr double kHeading = 15;
constexpr double kSmallHeading = 8;
constexpr double kDescription = 10;
constexpr double kAddress = 40;
// Occurrences that bring half of kText on an average page.
constexpr double kHalfOccurrences = 2;
// How much of a page's length counts: 0 not at all, 1 in full.
constexpr double kLengthWeight = 0.3;
// What is left of a score for a word that is on every page.
constexpr double kCommonShare = 0.2;

// The weight of a word in a title, before the title's length.
constexpr double kCommonTitle = 160;
constexpr double kRareTitle = 228;
static_assert(kRareTitle >
              kText + kMainHeading + kHeading + kSmallHeading + kDescription + kAddress);
// Above that: for a title of one word, less this for each further word, and, the smallest of all
// differences, what the word would score in the rest of the page.
constexpr double kShortTitle = 19;
constexpr double kTitleStep = 2;
constexpr double kBesideTitle = 8;
constexpr double kFullBeside = 100;
static_assert(kBesideTitleLimit + kShortTitle + kBesideTitle <= kWordMapScoreLimit);
static_assert(kRareTitle <= kBesideTitleLimit);

// 1 for a word that only one page has, near 0 for one that is on all.
double Rarity(const ScoreContext& context) {
  const double pages = context.pages;
  const double with = context.pagesWithWord;
  return std::min(
      1.0, std::log(1 + (pages - with + 0.5) / (with + 0.5)) / std::log(1 + (pages - 0.5) / 1.5));
}

// Without the title, for a rare word.
double PageScore(const Posting& posting, const ScoreContext& context) {
  const double length = context.pageWords / std::max(1.0, context.averageWords);
  const double half = kHalfOccurrences * (1 - kLengthWeight + kLengthWeight * length);
  double score = kText * posting.body / (posting.body + half);
  if ((posting.zones & kInMainHeading) != 0) score += kMainHeading;
  if ((posting.zones & kInHeading) != 0) score += kHeading;
  if ((posting.zones & kInSmallHeading) != 0) score += kSmallHeading;
  if ((posting.zones & kInDescription) != 0) score += kDescription;
  if ((posting.zones & kInAddress) != 0) score += kAddress;
  return score;
}

}  // namespace

uint8_t WordScore(const Posting& posting, const ScoreContext& context) {
  const double rarity = Rarity(context);
  const double page = PageScore(posting, context);
  double score = page * (kCommonShare + (1 - kCommonShare) * rarity);
  const uint8_t most = context.inSomeTitle ? kBesideTitleLimit : kWordMapScoreLimit;
  score = std::max<double>(score, std::min(posting.total, most));
  if ((posting.zones & kInTitle) != 0) {
    const double elsewhere = std::max<double>(kCommonTitle + (kRareTitle - kCommonTitle) * rarity,
                                              std::min(context.mostOnPage, kBesideTitleLimit));
    const double further = context.titleWords < 1 ? 0 : context.titleWords - 1;
    score = elsewhere + std::max(0.0, kShortTitle - kTitleStep * further) +
            kBesideTitle * std::min(1.0, page / kFullBeside);
  }
  return static_cast<uint8_t>(std::clamp(std::lround(score), 1L, long{kWordMapScoreLimit}));
}

}  // namespace vela::indexer
