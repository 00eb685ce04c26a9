#include "search/run_phrase.h"

#include <algorithm>
#include <cmath>

#include "format/word_weight.h"

namespace vela {

namespace {

// As the indexer weighs words: how many occurrences bring half of the mass, and as how many a title
// counts.
constexpr double kHalfOccurrences = 1.6;
constexpr double kTitleOccurrences = 3;

uint32_t AtLeastOne(int64_t count) {
  return static_cast<uint32_t>(std::clamp<int64_t>(count, 1, INT32_MAX));
}

}  // namespace

uint32_t MassOfWords(const Phrase& phrase, int32_t pageCount) {
  uint32_t mass = 0;
  for (const PhraseWord& word : phrase.words) {
    const auto isSame = [&](const PhraseWord& other) { return other.number == word.number; };
    if (std::find_if(phrase.words.begin(), phrase.words.end(), isSame) != &word) continue;
    mass += WordMass(AtLeastOne(word.list.size()), AtLeastOne(pageCount));
  }
  return mass;
}

uint32_t RunMass(size_t found, int32_t pageCount) {
  return WordMass(AtLeastOne(static_cast<int64_t>(found)), AtLeastOne(pageCount));
}

uint8_t RunWeight(uint32_t mass, uint32_t occurrences, bool inTitle) {
  const double counted = occurrences + (inTitle ? kTitleOccurrences : 0);
  const double weight = mass * counted / (counted + kHalfOccurrences);
  return WeightByte(static_cast<uint32_t>(std::lround(weight)), inTitle);
}

}  // namespace vela
