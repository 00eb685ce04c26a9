#include "settings/language_strings.h"

#include <algorithm>

#include "settings/line_format.h"

namespace vela {

const char* Text(const LanguageStrings& strings, Str key) {
  const OwnedArray<char>& text = strings.texts[static_cast<size_t>(key)];
  return text.empty() ? "" : text.data();
}

LanguageLine ReadLanguageString(LanguageStrings& strings, std::string_view key,
                                std::string_view line) {
  const auto* found = std::find(kLanguageKeys.begin(), kLanguageKeys.end(), key);
  if (found == kLanguageKeys.end()) return LanguageLine::kIgnored;
  std::string_view value;
  ParseQuotedAfterToken(line, value);
  OwnedArray<char> copy;
  if (!copy.TryAllocate(value.size() + 1)) return LanguageLine::kNoMemory;
  value.copy(copy.data(), value.size());
  strings.texts[static_cast<size_t>(found - kLanguageKeys.begin())] = std::move(copy);
  ++strings.count;
  return LanguageLine::kStored;
}

}  // namespace vela
