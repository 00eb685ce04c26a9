#include "inspector/check/stored_texts.h"

#include <algorithm>

#include "text/ascii.h"
#include "text/utf8.h"

namespace vela::inspector {

bool IsCleanText(std::string_view text, bool utf8) {
  for (size_t at = 0; at < text.size();) {
    if (IsControl(text[at])) return false;
    size_t length = 1;
    if (utf8 && static_cast<unsigned char>(text[at]) >= 0x80) {
      // U+FFFD itself takes three bytes.
      if (DecodeCharacter(text, at, length) == kReplacementCharacter && length == 1) return false;
    }
    at += length;
  }
  return true;
}

bool HasMarkup(std::string_view text) { return text.find_first_of("<>\"") != text.npos; }

bool NumberedLines::Next(std::string_view& line) {
  if (rest.empty()) return false;
  const size_t end = rest.find('\n');
  isWhole = end != rest.npos;
  line = rest.substr(0, end);
  rest.remove_prefix(isWhole ? end + 1 : rest.size());
  ++number;
  return true;
}

std::string_view TakeWord(std::string_view& line) {
  const std::string_view word = line.substr(0, line.find(' '));
  line.remove_prefix(std::min(word.size() + 1, line.size()));
  return word;
}

bool IsDecimal(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  return !text.empty() && std::ranges::all_of(text, IsDigit);
}

bool IsLineStart(std::string_view file, uint64_t at) {
  return at < file.size() && (at == 0 || file[static_cast<size_t>(at) - 1] == '\n');
}

}  // namespace vela::inspector
