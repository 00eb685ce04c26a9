#include "output/autocomplete.h"

namespace vela {

void WriteAutoComplete(Response& response, SuggestionReader& suggestions,
                       std::span<const std::string_view> words, bool utf8) {
  std::string_view text;
  while (suggestions.Next(text)) {
    const auto length = static_cast<int>(text.size());
    for (std::string_view word : words) {
      if (!PrefixMatches(text, word, utf8)) continue;
      WriteOut(response,
               "<div class=\"vela_ac_item\" "
               "onclick=\"VelaAutoComplete_UseSuggestion(&quot;%.*s&quot;);\">"
               "<a class=\"vela_ac_item\" href=\"#\" target=\"_self\">%.*s</a></div>\n",
               length, text.data(), length, text.data());
    }
  }
}

}  // namespace vela
