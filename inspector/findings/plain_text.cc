#include "inspector/findings/plain_text.h"

#include <cstdio>
#include <ctime>

#include "format/page_info.h"
#include "text/ascii.h"
#include "text/shown_numbers.h"
#include "text/utf8.h"

namespace vela::inspector {

std::string Printable(std::string_view text) {
  constexpr char32_t kFirstC1 = 0x80;
  constexpr char32_t kLastC1 = 0x9F;
  std::string out;
  for (size_t at = 0; at < text.size();) {
    size_t length = 0;
    const char32_t c = DecodeCharacter(text, at, length);
    const bool isControl = (length == 1 && IsControl(text[at])) || (kFirstC1 <= c && c <= kLastC1);
    if (isControl || c == kReplacementCharacter) {
      out += '?';
    } else {
      out.append(text, at, length);
    }
    at += length;
  }
  return out;
}

std::string Quoted(std::string_view text, size_t most) {
  if (text.size() <= most) return "\"" + Printable(text) + "\"";
  // Not inside a character.
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) --most;
  return "\"" + Printable(text.substr(0, most)) + "...\"";
}

std::string CountOfText(uint64_t count, std::string_view one, std::string_view several) {
  return CountText(count).append(" ").append(count == 1 ? one : several);
}

std::string DateText(int32_t seconds) {
  if (seconds == kNoPageDate) return "none";
  const time_t time = seconds;
  tm parts = {};
  char text[40];
  if (gmtime_r(&time, &parts) == nullptr || strftime(text, sizeof text, "%Y-%m-%d", &parts) == 0) {
    return std::to_string(seconds);
  }
  return text;
}

}  // namespace vela::inspector
