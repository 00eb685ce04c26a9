#include "indexer/words/detected_language.h"

// The second header lacks what it uses of the first two.
#include <cstdio>
#include <vector>
//
#include <cld2/public/compact_lang_det.h>
#include <cld2/public/encodings.h>

#include <algorithm>

#include "text/ascii.h"

namespace vela::indexer {

namespace {

// Of letters, with a blank before each word. A menu is shorter.
constexpr int kLeastBytes = 60;

// The codes that the library has of old.
std::string PresentCode(std::string code) {
  code.resize(std::min(code.find('-'), code.size()));
  if (code == "iw") return "he";
  if (code == "jw") return "jv";
  return code;
}

}  // namespace

std::string DetectedLanguage(std::string_view text, bool isMarkup) {
  // Of markup the head says little.
  constexpr size_t kMarkupFactor = 8;
  size_t limit = std::min(text.size(), kLanguageSampleBytes * (isMarkup ? kMarkupFactor : 1));
  // Not through a character.
  while (limit > 0 && limit < text.size() && (static_cast<unsigned char>(text[limit]) >> 6) == 2) {
    --limit;
  }
  const CLD2::CLDHints hints = {nullptr, nullptr, CLD2::UNKNOWN_ENCODING, CLD2::UNKNOWN_LANGUAGE};
  CLD2::Language languages[3];
  int percents[3];
  double scores[3];
  int bytes = 0;
  int valid = 0;
  bool isReliable = false;
  const CLD2::Language language = CLD2::ExtDetectLanguageSummaryCheckUTF8(
      text.data(), static_cast<int>(limit), !isMarkup, &hints, 0, languages, percents, scores,
      nullptr, &bytes, &isReliable, &valid);
  if (!isReliable || bytes < kLeastBytes || language == CLD2::UNKNOWN_LANGUAGE) return {};
  return PresentCode(CLD2::LanguageCode(language));
}

bool IsLanguageCode(std::string_view code) {
  return (code.size() == 2 || code.size() == 3) && std::ranges::all_of(code, IsLower);
}

}  // namespace vela::indexer
