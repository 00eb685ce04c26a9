#include "indexer/words/heading_text.h"

#include <algorithm>
#include <array>

#include "indexer/words/clean_text.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

// Words before the number of a part, in the languages of the built-in files.
constexpr std::array<std::string_view, 24> kParts = {"chapter",
                                                     "part",
                                                     "appendix",
                                                     "section",
                                                     "kapitel",
                                                     "anhang",
                                                     "abschnitt",
                                                     "teil",
                                                     "chapitre",
                                                     "partie",
                                                     "annexe",
                                                     "section",
                                                     "cap\u00EDtulo",
                                                     "parte",
                                                     "ap\u00E9ndice",
                                                     "anexo",
                                                     "capitolo",
                                                     "appendice",
                                                     "hoofdstuk",
                                                     "bijlage",
                                                     "rozdzia\u0142",
                                                     "dodatek",
                                                     "\u0433\u043B\u0430\u0432\u0430",
                                                     "bilaga"};

std::string_view TakeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find(' '));
  text.remove_prefix(std::min(word.size() + 1, text.size()));
  return word;
}

// "3", "3.2.1", "A", "A.1", "IV": of at most a few characters between full stops.
bool IsNumber(std::string_view text, bool takesLetters) {
  constexpr size_t kPartLimit = 4;
  if (text.empty()) return false;
  size_t length = 0;
  bool hasDigit = false;
  for (const char c : text) {
    if (c == '.') {
      if (length == 0) return false;
      length = 0;
      continue;
    }
    const bool isNumeral = takesLetters && c >= 'A' && c <= 'Z';
    if ((!IsDigit(c) && !isNumeral) || ++length > kPartLimit) return false;
    hasDigit = hasDigit || IsDigit(c);
  }
  return hasDigit || takesLetters;
}

// Takes the number off the beginning, with what ends it. `isNamed`: a word such as "Chapter" stood
// before. A number that a heading only begins with ("2 ways", "3.11.2 Documentation") is none:
// behind that of a heading stands a full stop or a bracket, or it is one of several levels.
bool TakeNumber(std::string_view& text, bool isNamed) {
  std::string_view rest = text;
  std::string_view number = TakeWord(rest);
  const bool isEnded =
      !number.empty() && (number.ends_with('.') || number.ends_with(')') || number.ends_with(':'));
  if (isEnded) number.remove_suffix(1);
  if (!isEnded && !isNamed) return false;
  if (rest.empty() || !IsNumber(number, isNamed || number.find('.') != number.npos)) return false;
  text = rest;
  return true;
}

bool IsPart(std::string_view word) {
  return std::ranges::any_of(kParts, [word](std::string_view part) {
    return std::ranges::equal(word, part, {}, ToLowerAscii);
  });
}

}  // namespace

std::string PlainHeading(std::string_view heading) {
  const std::string line = CollapseBlanks(std::string(heading));
  std::string_view text = line;
  for (const std::string_view sign : {"\u00B6", "#", "\u00A7"}) {
    if (text.size() <= sign.size() || !text.ends_with(sign)) continue;
    std::string_view rest = text.substr(0, text.size() - sign.size());
    // "C#" is a name.
    if (sign == "#" && !rest.ends_with(' ')) continue;
    while (rest.ends_with(' ')) rest.remove_suffix(1);
    text = rest;
  }
  std::string_view behindPart = text;
  if (IsPart(TakeWord(behindPart)) && TakeNumber(behindPart, true)) {
    text = behindPart;
  } else {
    TakeNumber(text, false);
  }
  return std::string(text);
}

}  // namespace vela::indexer
