#include "indexer/collect/word_weight.h"

#include <algorithm>
#include <cmath>

#include "format/word_weight.h"

namespace vela::indexer {

namespace {

// Occurrences that bring half of a word's mass.
constexpr double kHalfOccurrences = 1.6;
// How much of a page's length counts: 0 not at all, 1 in full.
constexpr double kLengthWeight = 0.4;
// Pages below this share of the average length are not taken for shorter: a title alone says
// little.
constexpr double kShortPage = 0.5;

// As how many occurrences a word counts that stands there.
constexpr struct {
  Zone zone;
  double occurrences;
} kZones[] = {
    {kInTitle, 1.5},        {kInMainHeading, 2}, {kInHeading, 1},
    {kInSmallHeading, 0.5}, {kInDescription, 1}, {kInAddress, 1},
};

// A page whose links have up to this share of its text is a page like others ...
constexpr double kUsualLinks = 0.4;
// ... and of one that is all links words lose this share of their weight.
constexpr double kListLoss = 0.8;

// What a word gains, as shares of its mass: in a title ...
constexpr double kTitleGain = 0.1;
// ... on the page to which most others lead by it, where that are some at least ...
constexpr double kLinkGain = 0.27;
constexpr double kSomeLinking = 3;
// ... and at the beginning of a page: in so many tokens, up to this share of its words.
constexpr double kBeginningGain = 0.15;
constexpr double kBeginningTokens = 60;
constexpr double kBeginningShare = 0.1;

double TitleGain(const Posting& posting) {
  return (posting.zones & kInTitle) != 0 ? kTitleGain : 0;
}

double LinkGain(const WeightContext& context) {
  return kLinkGain * context.linking / std::max<double>(context.mostLinking, kSomeLinking);
}

double BeginningGain(const Posting& posting, const WeightContext& context) {
  // A token that is none of the body's stands behind all of them.
  const double end = std::min(kBeginningTokens, kBeginningShare * context.pageWords);
  const bool counts = posting.body != 0 && (posting.zones & kInTitle) == 0 && posting.token < end;
  return counts ? kBeginningGain : 0;
}

double ListFactor(double linkShare) {
  return 1 - kListLoss * std::max(0.0, linkShare - kUsualLinks) / (1 - kUsualLinks);
}

}  // namespace

uint8_t WordWeight(const Posting& posting, const WeightContext& context) {
  const double length =
      std::max(kShortPage, context.pageWords / std::max(1.0, context.averageWords));
  double occurrences = posting.body / (1 - kLengthWeight + kLengthWeight * length);
  for (const auto& row : kZones) {
    if ((posting.zones & row.zone) != 0) occurrences += row.occurrences;
  }
  const double weight =
      context.mass *
      (ListFactor(context.linkShare) * occurrences / (occurrences + kHalfOccurrences) +
       TitleGain(posting) + LinkGain(context) + BeginningGain(posting, context));
  return WeightByte(static_cast<uint32_t>(std::lround(weight)), (posting.zones & kInTitle) != 0);
}

}  // namespace vela::indexer
