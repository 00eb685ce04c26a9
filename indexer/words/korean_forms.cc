#include "indexer/words/korean_forms.h"

#include <cstdint>

#include "indexer/words/symbols.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr char32_t kFirstSyllable = 0xAC00;
constexpr char32_t kLastSyllable = 0xD7A3;
constexpr char32_t kFinals = 28;  // ways in which a syllable ends, a vowel first
constexpr char32_t kFinalL = 8;
constexpr size_t kSyllableBytes = 3;

// How the syllable before a particle ends.
enum class Ending : uint8_t { kAny, kVowel, kConsonant, kVowelOrL, kConsonantButL };

struct Particle {
  std::string_view text;
  Ending after;
};

using enum Ending;

// Of nouns, and the commonest of nouns that are made verbs.
constexpr Particle kParticles[] = {
    {"에서부터", kAny},
    {"으로부터", kConsonantButL},
    {"이라고는", kConsonant},
    {"입니다", kAny},
    {"합니다", kAny},
    {"됩니다", kAny},
    {"했습니다", kAny},
    {"되었습니다", kAny},
    {"에서는", kAny},
    {"에서도", kAny},
    {"에서의", kAny},
    {"에게서", kAny},
    {"으로는", kConsonantButL},
    {"으로도", kConsonantButL},
    {"으로써", kConsonantButL},
    {"으로서", kConsonantButL},
    {"로부터", kVowelOrL},
    {"이라는", kConsonant},
    {"이라고", kConsonant},
    {"이라면", kConsonant},
    {"이란", kConsonant},
    {"이나", kConsonant},
    {"이며", kConsonant},
    {"이고", kConsonant},
    {"이지만", kConsonant},
    {"이다", kAny},
    {"에서", kAny},
    {"에는", kAny},
    {"에도", kAny},
    {"에게", kAny},
    {"에만", kAny},
    {"에요", kAny},
    {"부터", kAny},
    {"까지", kAny},
    {"까지는", kAny},
    {"보다", kAny},
    {"처럼", kAny},
    {"마다", kAny},
    {"조차", kAny},
    {"밖에", kAny},
    {"대로", kAny},
    {"만큼", kAny},
    {"하고", kAny},
    {"하는", kAny},
    {"하기", kAny},
    {"하여", kAny},
    {"하면", kAny},
    {"하지", kAny},
    {"하게", kAny},
    {"한다", kAny},
    {"해서", kAny},
    {"해야", kAny},
    {"하려면", kAny},
    {"했다", kAny},
    {"되는", kAny},
    {"되어", kAny},
    {"된다", kAny},
    {"들은", kAny},
    {"들을", kAny},
    {"들이", kAny},
    {"들의", kAny},
    {"들에", kAny},
    {"라는", kVowel},
    {"라고", kVowel},
    {"라면", kVowel},
    {"으로", kConsonantButL},
    {"로는", kVowelOrL},
    {"로도", kVowelOrL},
    {"로서", kVowelOrL},
    {"로써", kVowelOrL},
    {"과의", kConsonant},
    {"와의", kVowel},
    {"만을", kAny},
    {"만이", kAny},
    {"들", kAny},
    {"은", kConsonant},
    {"는", kVowel},
    {"이", kConsonant},
    {"가", kVowel},
    {"을", kConsonant},
    {"를", kVowel},
    {"과", kConsonant},
    {"와", kVowel},
    {"의", kAny},
    {"에", kAny},
    {"로", kVowelOrL},
    {"도", kAny},
    {"만", kAny},
    {"나", kVowel},
    {"란", kVowel},
    {"며", kVowel},
    {"할", kAny},
    {"한", kAny},
    {"해", kAny},
    {"된", kAny},
    {"될", kAny},
};

// The syllable that ends at byte `end`; 0 for anything else.
char32_t SyllableBefore(std::string_view word, size_t end) {
  if (end < kSyllableBytes) return 0;
  size_t length = 0;
  const char32_t c = DecodeCharacter(word, end - kSyllableBytes, length);
  const bool isSyllable = c >= kFirstSyllable && c <= kLastSyllable;
  return isSyllable && length == kSyllableBytes ? c : 0;
}

bool Fits(char32_t syllable, Ending after) {
  const char32_t final = (syllable - kFirstSyllable) % kFinals;
  switch (after) {
    case kVowel:
      return final == 0;
    case kConsonant:
      return final != 0;
    case kVowelOrL:
      return final == 0 || final == kFinalL;
    case kConsonantButL:
      return final != 0 && final != kFinalL;
    case kAny:
      break;
  }
  return true;
}

}  // namespace

std::string WithoutParticle(std::string_view word) {
  std::string_view longest;
  for (const Particle& particle : kParticles) {
    if (particle.text.size() <= longest.size() || !word.ends_with(particle.text)) continue;
    const size_t end = word.size() - particle.text.size();
    const char32_t last = SyllableBefore(word, end);
    const bool isWord = last != 0 && SyllableBefore(word, end - kSyllableBytes) != 0;
    // How "Debian" sounds is not known.
    const bool isForeign = end > 0 && IsAlphaNumeric(word[end - 1]);
    if (isForeign || (isWord && Fits(last, particle.after))) longest = particle.text;
  }
  if (longest.empty()) return {};
  return std::string(word.substr(0, word.size() - longest.size()));
}

}  // namespace vela::indexer
