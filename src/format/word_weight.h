// word_weight.h: what the bytes of the word map and the page info say about the rank of a page when
// the settings have Ranking.
//
// A score byte of the word map then is the weight of the word on the page, 1 to kWordWeightLimit,
// times two, plus one when the page has the word in its title. Weights add up: they are on one
// scale for all words of an index, on which a word of one page weighs kWordWeightLimit at most and
// commoner ones less, as WordMass says.
//
// A record of the page info ends with kTitleMassWidth bytes more: the sum of the masses of the
// words of the page's title, or of the parts of those that are joined when that is less,
// little-endian, kTitleMassLimit at most; 0 for none.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "format/little_endian.h"

namespace vela {

inline constexpr uint32_t kWordWeightLimit = 127;

constexpr uint8_t WeightByte(uint32_t weight, bool inTitle) {
  return static_cast<uint8_t>(std::clamp(weight, 1U, kWordWeightLimit) << 1 | (inTitle ? 1U : 0U));
}
constexpr uint32_t WeightOf(uint32_t scoreByte) { return scoreByte >> 1; }
constexpr bool IsTitleWord(uint32_t scoreByte) { return (scoreByte & 1) != 0; }

inline constexpr size_t kTitleMassWidth = 2;
inline constexpr uint32_t kTitleMassLimit = LargestNumber(kTitleMassWidth);

// How much a word on so many of the pages says: kWordWeightLimit when one page has it, 1 at least.
inline uint32_t WordMass(uint32_t pagesWithWord, uint32_t pages) {
  const double all = std::max(pages, 1U);
  const double with = std::clamp<double>(pagesWithWord, 1, all);
  const double rarity =
      std::log(1 + (all - with + 0.5) / (with + 0.5)) / std::log(1 + (all - 0.5) / 1.5);
  return std::max(1U, static_cast<uint32_t>(std::lround(kWordWeightLimit * rarity)));
}

}  // namespace vela
