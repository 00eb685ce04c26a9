#include "index/autocomplete.h"

#include <algorithm>

#include "format/autocomplete.h"
#include "format/keyword_line.h"
#include "text/ascii.h"
#include "text/find_folded.h"
#include "text/word_compare.h"

namespace vela {

namespace {

// What of the word a suggestion has at its beginning, up to the case of ASCII letters, whenever it
// begins with the word.
std::string_view PlainBeginning(std::string_view word, bool utf8) {
  size_t end = 0;
  while (end < word.size() && static_cast<unsigned char>(word[end]) < 0x80) {
    // In UTF-8 the "i" may stand for U+0130, the one character whose lower case has another length.
    if (utf8 && ToLowerAscii(word[end]) == 'i') break;
    ++end;
  }
  return word.substr(0, end);
}

// Where the first line behind `from`, the end of a line, begins that begins with the text behind
// the line feed of `text`; the end for none.
size_t FindLine(std::string_view file, size_t from, std::string_view text) {
  const size_t at = FindFolded(file, text, from);
  return at == file.npos ? file.size() : at + 1;
}

}  // namespace

LoadStatus SuggestionReader::Open(const IndexDirectory& directory, const Settings& settings) {
  if (!file_.Open(directory, kAutoCompleteFileName, true)) return LoadStatus::kCannotOpen;
  lines_ = {file_.bytes()};
  pieceLimit_ = KeywordLineLimit(settings.MaxKeyWordLineLen);
  return LoadStatus::kOk;
}

void SuggestionReader::NarrowTo(std::span<const std::string_view> words, bool utf8,
                                const LookupFile& lookup) {
  if (!lookup.isOpen() || lookup.header().longestSuggestion > pieceLimit_ ||
      !IsFileOf(lookup.header().autocomplete, file_.bytes()) ||
      !beginnings_.TryAllocate(words.size())) {
    return;
  }
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string_view plain = PlainBeginning(words[i], utf8);
    if (plain.empty()) return beginnings_.Release();
    Set(beginnings_[i].text, "\n");
    Append(beginnings_[i].text, plain);
  }
}

// Goes on to the next line that has one of the beginnings, or to the end. The first line of the
// file has no line feed before it, and is always looked at.
void SuggestionReader::PassOver() {
  const std::string_view file = file_.bytes();
  const size_t here = file.size() - lines_.rest.size();
  if (here == 0) return;
  size_t next = file.size();
  for (Beginning& beginning : beginnings_) {
    if (beginning.line < here) {
      beginning.line = FindLine(file, here - 1, View(beginning.text));
    }
    next = std::min(next, beginning.line);
  }
  lines_.rest = file.substr(next);
}

bool SuggestionReader::Next(std::string_view& suggestion) {
  std::string_view line;
  for (;;) {
    if (!beginnings_.empty()) PassOver();
    if (!ReadLine(lines_, pieceLimit_, line)) return false;
    line = UpToNul(line);
    if (line.size() <= 1) continue;
    line.remove_suffix(1);
    suggestion = line.substr(0, line.find_first_of("\r\n"));
    return true;
  }
}

bool PrefixMatches(std::string_view text, std::string_view word, bool utf8) {
  const TextMode mode = {true, utf8};
  return WordCompareN(mode, text, word, word.size()) == 0;
}

}  // namespace vela
