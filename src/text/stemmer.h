// stemmer.h: reducing words to their stems, through the Snowball library.
#pragma once

#include <cstdint>
#include <string_view>

#include "text/fixed_text.h"

struct sb_stemmer;

namespace vela {

// The algorithms by the numbers of the setting StemmingAlgo.
enum StemmingAlgorithm : int32_t {
  kStemDanish,
  kStemDutch,
  kStemEnglish,
  kStemFinnish,
  kStemFrench,
  kStemGerman,
  kStemHungarian,
  kStemItalian,
  kStemNorwegian,
  kStemPorter,  // the first algorithm for English
  kStemPortuguese,
  kStemRomanian,
  kStemRussian,
  kStemSpanish,
  kStemSwedish,
  kStemTurkish,
};
inline constexpr int32_t kStemmingAlgorithmCount = kStemTurkish + 1;

// The library's name of an algorithm, 0 <= algorithm < kStemmingAlgorithmCount.
const char* StemmingAlgorithmName(int32_t algorithm);

enum class StemmerStatus { kOk, kInvalidAlgorithm, kUnavailable };

// Owns a stemmer for one language and encoding.
class Stemmer {
 public:
  Stemmer() = default;
  Stemmer(const Stemmer&) = delete;
  Stemmer& operator=(const Stemmer&) = delete;
  ~Stemmer() { Release(); }

  // kUnavailable: the library has no such pair, or could not set it up.
  [[nodiscard]] StemmerStatus Create(int32_t algorithm, bool utf8);
  void Release();

  // Replaces the word by its stem. False, and the word as it was, when it holds a digit or
  // punctuation, or its stem is empty or longer than 2084 bytes.
  bool StemWord(FixedText<2086>& word);

 private:
  sb_stemmer* stemmer_ = nullptr;
};

}  // namespace vela
