#include "indexer/score.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vela::indexer {

namespace {
double Knob(const char* name, double value) {
  const char* text = getenv(name);
  return text == nullptr ? value : atof(text);
}
}  // namespace

uint8_t WordScore(const Posting& p, const ScoreContext& c) {
  static const double kText = Knob("W_TEXT", 90), kTitle = Knob("W_TITLE", 120),
                      kTitleFall = Knob("W_TFALL", 0.5), kTitleFlat = Knob("W_TFLAT", 100),
                      kMain = Knob("W_H1", 25), kHead = Knob("W_H2", 15), kSmall = Knob("W_H4", 8),
                      kDesc = Knob("W_DESC", 10), kAddr = Knob("W_ADDR", 10),
                      k1 = Knob("W_K1", 1.2), kB = Knob("W_B", 0.75),
                      kRareFloor = Knob("W_RFLOOR", 0.2);
  const double n = c.pages;
  const double df = c.pagesWithWord;
  const double idf = std::log(1 + (n - df + 0.5) / (df + 0.5)) / std::log(1 + (n - 0.5) / 1.5);
  const double rare = kRareFloor + (1 - kRareFloor) * std::min(1.0, idf);
  const double length = 1 - kB + kB * c.pageWords / std::max(1.0, c.averageWords);
  double score = kText * p.body / (p.body + k1 * length);
  if (p.zones & kInMainHeading) score += kMain;
  if (p.zones & kInHeading) score += kHead;
  if (p.zones & kInSmallHeading) score += kSmall;
  if (p.zones & kInDescription) score += kDesc;
  if (p.zones & kInAddress) score += kAddr;
  score *= rare;
  if (p.zones & kInTitle) {
    static const double tr = Knob("W_TRARE", 0), tb = Knob("W_TBODY", 1);
    score = tb * score + kTitleFlat + (1 - tr + tr * rare) * kTitle * std::pow(std::max(1u, c.titleWords), -kTitleFall);
  }
  score = std::max(score, static_cast<double>(p.total));
  return static_cast<uint8_t>(std::clamp(std::lround(score), 1L, 255L));
}

int32_t ProximityWeight() { return static_cast<int32_t>(Knob("W_PROX", -17)); }

}  // namespace vela::indexer
