#include "settings/language_strings.h"

#include <algorithm>

#include "settings/line_format.h"

namespace vela {

const char* Text(const LanguageStrings& strings, Str key) {
  const auto place = static_cast<size_t>(key);
  const OwnedArray<char>& text = strings.texts[place];
  if (!text.empty()) return text.data();
  return place < kLanguageStringCount ? "" : kFurtherTexts[place - kLanguageStringCount].english;
}

namespace {

// Where the text of the key stands; false when no text has it.
bool FindPlace(std::string_view key, size_t& place) {
  const auto* found = std::find(kLanguageKeys.begin(), kLanguageKeys.end(), key);
  place = static_cast<size_t>(found - kLanguageKeys.begin());
  if (found != kLanguageKeys.end()) return true;
  const auto* further = std::find_if(std::begin(kFurtherTexts), std::end(kFurtherTexts),
                                     [key](const FurtherText& text) { return text.key == key; });
  place += static_cast<size_t>(further - std::begin(kFurtherTexts));
  return further != std::end(kFurtherTexts);
}

}  // namespace

LanguageLine ReadLanguageString(LanguageStrings& strings, std::string_view key,
                                std::string_view line) {
  size_t place = 0;
  if (!FindPlace(key, place)) return LanguageLine::kIgnored;
  std::string_view value;
  ParseQuotedAfterToken(line, value);
  OwnedArray<char> copy;
  if (!copy.TryAllocate(value.size() + 1)) return LanguageLine::kNoMemory;
  value.copy(copy.data(), value.size());
  strings.texts[place] = std::move(copy);
  if (place < kLanguageStringCount) ++strings.count;
  return LanguageLine::kStored;
}

}  // namespace vela
