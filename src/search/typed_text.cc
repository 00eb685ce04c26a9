#include "search/typed_text.h"

#include <algorithm>

#include "text/ascii.h"
#include "text/utf8.h"

namespace vela {

namespace {

constexpr std::string_view kReplacement = "\uFFFD";

// What stands for the control character in an answer.
std::string_view ShownControl(char c, bool utf8) {
  return IsSpace(c) || !utf8 ? std::string_view(" ") : kReplacement;
}

bool IsShowable(char32_t c) { return c != kReplacementCharacter && c != 0xFFFE && c != 0xFFFF; }

}  // namespace

void ReplaceUnshowable(QueryText& text, bool utf8) {
  const QueryText typed = text;
  const std::string_view bytes = View(typed);
  size_t written = 0;
  size_t length = 1;
  for (size_t at = 0; at < bytes.size(); at += length) {
    std::string_view shown;
    if (IsControl(bytes[at])) {
      length = 1;
      shown = ShownControl(bytes[at], utf8);
    } else {
      const bool isShowable = !utf8 || IsShowable(DecodeCharacter(bytes, at, length));
      shown = isShowable ? bytes.substr(at, length) : kReplacement;
    }
    if (shown.size() >= kQuerySize - written) break;
    shown.copy(text.bytes + written, shown.size());
    written += shown.size();
  }
  text.bytes[written] = '\0';
}

void DropCutCharacter(DisplayQuery& text) {
  const std::string_view bytes = View(text);
  // The first byte of a character is among the last four.
  size_t start = bytes.size();
  do {
    if (start == 0 || bytes.size() - start == 4) return;
    --start;
  } while ((static_cast<unsigned char>(bytes[start]) & 0xC0) == 0x80);
  size_t length = 0;
  if (DecodeCharacter(bytes, start, length) != kReplacementCharacter) return;
  if (length == 1) text.bytes[start] = '\0';
}

}  // namespace vela
