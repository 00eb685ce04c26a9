#include "index/autocomplete.h"

#include "format/autocomplete.h"
#include "format/keyword_line.h"
#include "text/word_compare.h"

namespace vela {

LoadStatus SuggestionReader::Open(const IndexDirectory& directory, const Settings& settings) {
  if (!file_.Open(directory, kAutoCompleteFileName, true)) return LoadStatus::kCannotOpen;
  lines_ = {file_.bytes()};
  pieceLimit_ = KeywordLineLimit(settings.MaxKeyWordLineLen);
  return LoadStatus::kOk;
}

bool SuggestionReader::Next(std::string_view& suggestion) {
  std::string_view line;
  while (ReadLine(lines_, pieceLimit_, line)) {
    line = UpToNul(line);
    if (line.size() <= 1) continue;
    line.remove_suffix(1);
    suggestion = line.substr(0, line.find_first_of("\r\n"));
    return true;
  }
  return false;
}

bool PrefixMatches(std::string_view text, std::string_view word, bool utf8) {
  const TextMode mode = {true, utf8};
  return WordCompareN(mode, text, word, word.size()) == 0;
}

}  // namespace vela
