#include "output/autocomplete.h"

#include <array>

#include "text/completion_fold.h"

namespace vela {

namespace {

void WriteItem(Response& response, std::string_view text) {
  const auto length = static_cast<int>(text.size());
  WriteOut(response,
           "<div class=\"vela_ac_item\" "
           "onclick=\"VelaAutoComplete_UseSuggestion(&quot;%.*s&quot;);\">"
           "<a class=\"vela_ac_item\" href=\"#\" target=\"_self\">%.*s</a></div>\n",
           length, text.data(), length, text.data());
}

}  // namespace

void WriteAutoComplete(Response& response, SuggestionReader& suggestions,
                       std::span<const std::string_view> words, bool utf8) {
  std::string_view text;
  while (suggestions.Next(text)) {
    for (std::string_view word : words) {
      if (PrefixMatches(text, word, utf8)) WriteItem(response, text);
    }
  }
}

void WriteCompletions(Response& response, const Completions& completions, QueryText typed) {
  const size_t length = FoldForCompletion(typed.bytes, View(typed).size());
  std::array<std::string_view, 2 * Completions::kMostOfEach> found;
  const size_t count = completions.Find({typed.bytes, length}, found);
  for (size_t i = 0; i < count; ++i) WriteItem(response, found[i]);
}

}  // namespace vela
