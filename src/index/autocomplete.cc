#include "index/autocomplete.h"

#include "index/spelling.h"
#include "text/word_compare.h"

namespace vela {

bool PrefixMatches(std::string_view text, std::string_view word, bool utf8) {
  const TextMode mode = {true, utf8};
  return WordCompareN(mode, text, word, word.size()) == 0;
}

bool WriteAutoComplete(Response& response, const IndexDirectory& directory,
                       const Settings& settings, std::span<const std::string_view> words) {
  FileImage file;
  if (!file.Open(directory, kAutoCompleteFileName, true)) {
    WriteRaw(response,
             "Can not find the vela_autocomplete.vdat index file.<br />Please make sure the "
             "generated index files are uploaded to the same path as this search script.<br />"
             "Also check file permissions have been set to allow reading.<br />");
    return false;
  }
  LineReader reader{file.bytes()};
  std::string_view line;
  while (ReadLine(reader, KeyWordLineSize(settings) - 1, line)) {
    line = UpToNul(line);
    if (line.size() <= 1) continue;
    line.remove_suffix(1);
    const std::string_view text = line.substr(0, line.find_first_of("\r\n"));
    const auto length = static_cast<int>(text.size());
    for (std::string_view word : words) {
      if (!PrefixMatches(text, word, IsUtf8(settings))) continue;
      WriteOut(response,
               "<div class=\"vela_ac_item\" "
               "onclick=\"VelaAutoComplete_UseSuggestion(&quot;%.*s&quot;);\">"
               "<a class=\"vela_ac_item\" href=\"#\" target=\"_self\">%.*s</a></div>\n",
               length, text.data(), length, text.data());
    }
  }
  return true;
}

}  // namespace vela
