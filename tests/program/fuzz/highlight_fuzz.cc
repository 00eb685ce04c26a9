// highlight_fuzz.cc: marking words in a title or a description. Input: a line of letters (l fold to
// lower case, u UTF-8) that may end in a number, how often the text is repeated; a line of join
// characters; a line of terms, separated by tabs, those with a blank phrases; then the text.
//
// The repetition is for texts on which a slow way of marking would not come to its end.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>
#include <vector>

#include "output/highlight.h"
#include "program/fuzz/check.h"
#include "program/fuzz/term_list.h"
#include "search/highlight_terms.h"
#include "text/join_chars.h"

namespace vela::fuzz {
namespace {

constexpr std::string_view kOpen = "<span class=\"highlight\">";
constexpr std::string_view kClose = "</span>";
constexpr size_t kMostText = 1 << 20;
constexpr size_t kLongestWord = 400;
constexpr size_t kLongestTerm = 2085;

std::string Repeated(std::string_view letters, std::string_view text) {
  const size_t digits = std::min(letters.find_first_of("0123456789"), letters.size());
  const long times = strtol(std::string(letters.substr(digits)).c_str(), nullptr, 10);
  std::string all;
  for (long i = 0; i < std::clamp(times, 1L, 100000L) && all.size() < kMostText; ++i) all += text;
  return all;
}

std::string Decoded(std::string_view text, std::string_view joinChars) {
  std::string decoded(text.size() + 1, '\0');
  decoded.resize(DecodeJoinChars(text, decoded.data(), joinChars));
  return decoded;
}

std::string Encoded(std::string_view text, std::string_view joinChars) {
  std::string encoded(8 * text.size() + 1, '\0');
  encoded.resize(EncodeJoinChars(text, encoded.data(), joinChars));
  return encoded;
}

// Takes the marks out, which must come in pairs with something between them.
std::string WithoutMarks(std::string_view marked) {
  std::string plain;
  size_t at = 0;
  for (size_t open; (open = marked.find(kOpen, at)) != marked.npos;) {
    plain += marked.substr(at, open - at);
    const size_t begin = open + kOpen.size();
    const size_t close = marked.find(kClose, begin);
    VELA_CHECK(close != marked.npos && close > begin);
    VELA_CHECK(marked.substr(begin, close - begin).find(kOpen) == marked.npos);
    plain += marked.substr(begin, close - begin);
    at = close + kClose.size();
  }
  return plain.append(marked.substr(at));
}

// Whether a stretch of the text may be as long as the longest word, or longer.
bool HasLongWord(std::string_view text, std::string_view joinChars) {
  size_t length = 0;
  for (const char c : text) {
    const bool isBreak = c == ' ' || ispunct(static_cast<unsigned char>(c)) != 0;
    length = isBreak && joinChars.find(c) == joinChars.npos ? 0 : length + 1;
    if (length >= kLongestWord) return true;
  }
  return false;
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string_view input = Text(data, size);
  input = input.substr(0, input.find('\0'));
  const std::string_view letters = TakeLine(input);
  const std::string_view joinChars = TakeLine(input);
  std::string_view line = TakeLine(input);
  // The marks have a form of their own while the work is done; text that looks like them, and join
  // characters that would be encoded inside them, prove nothing.
  for (const std::string_view mark :
       {kOpen, kClose, std::string_view("[;!]"), std::string_view("[!;]")}) {
    if (input.find(mark) != input.npos) return 0;
  }
  if (joinChars.find_first_of("&#;[!]0123456789") != joinChars.npos) return 0;
  const std::string text = Repeated(letters, input);

  std::vector<std::string_view> parts;
  while (!line.empty()) {
    const size_t tab = line.find('\t');
    parts.push_back(line.substr(0, std::min(tab, kLongestTerm)));
    line = tab == line.npos ? std::string_view() : line.substr(tab + 1);
  }
  TermList words;
  FillTerms(words, parts);
  HighlightTerms terms;
  VELA_CHECK(CollectHighlightTerms(terms, words, true));
  const TextMode mode = {letters.find('l') != letters.npos, letters.find('u') != letters.npos};
  OwnedArray<char> marked;
  size_t length = 0;
  VELA_CHECK(HighlightText(text, terms, {mode, joinChars}, marked, length));
  VELA_CHECK(marked.data()[length] == '\0');

  const std::string plain = WithoutMarks({marked.data(), length});
  const std::string decoded = Decoded(text, joinChars);
  const std::string whole = Encoded(decoded, joinChars);
  VELA_CHECK(whole.starts_with(plain));
  if (!HasLongWord(decoded, joinChars)) VELA_CHECK(plain == whole);
  if (terms.count == 0) VELA_CHECK(std::string_view(marked.data(), length) == plain);

  // A text that a term equals is marked as a whole.
  for (const HighlightTerm& term : terms) {
    if (term.isPhrase || !joinChars.empty() || term.text.size() >= kLongestWord) continue;
    const bool isWord =
        !term.text.empty() && std::all_of(term.text.begin(), term.text.end(), [](char c) {
          return isalnum(static_cast<unsigned char>(c)) != 0;
        });
    if (!isWord) continue;
    VELA_CHECK(HighlightText(term.text, terms, {mode, joinChars}, marked, length));
    VELA_CHECK(std::string_view(marked.data(), length) ==
               std::string(kOpen) + std::string(term.text) + std::string(kClose));
  }
  return 0;
}
