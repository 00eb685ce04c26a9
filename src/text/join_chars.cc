#include "text/join_chars.h"

#include <cstdint>
#include <cstdio>

#include "text/ascii.h"
#include "text/numbers.h"

namespace vela {

namespace {

// A reference is at most this long, its ";" not counted.
constexpr size_t kReferenceLimit = 8;

// A hexadecimal number as the C library reads it, white space, sign and "0x" included; 0 when
// anything follows it.
int32_t ReadHexadecimal(std::string_view text) {
  while (!text.empty() && IsSpace(text[0])) text.remove_prefix(1);
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  if ((text.starts_with("0x") || text.starts_with("0X")) && text.size() > 2) text.remove_prefix(2);
  int32_t value = 0;
  for (char c : text) {
    const int digit = HexDigitValue(c);
    if (digit < 0) return 0;
    value = value * 16 + digit;  // at most five digits: cannot overflow
  }
  return isNegative ? -value : value;
}

// The number of the reference whose text lies between "&#" and ";".
int32_t ReferenceNumber(std::string_view digits) {
  const int32_t decimal = ReadDecimal32(digits);
  if (decimal != 0 || !digits.starts_with('x')) return decimal;
  return ReadHexadecimal(digits.substr(1));
}

}  // namespace

size_t DecodeJoinChars(std::string_view text, char* out, std::string_view joinChars) {
  size_t written = 0;
  for (size_t at = 0; at < text.size();) {
    if (text[at] == '&' && at + 3 < text.size() && text[at + 1] == '#') {
      const size_t length = text.substr(at, kReferenceLimit).find(';');
      if (length != text.npos) {
        const auto c = static_cast<char>(ReferenceNumber(text.substr(at + 2, length - 2)) & 0xFF);
        if (c == '\0') break;
        if (joinChars.find(c) != joinChars.npos) {
          out[written++] = c;
          at += length + 1;
          continue;
        }
      }
    }
    out[written++] = text[at++];
  }
  out[written] = '\0';
  return written;
}

size_t EncodeJoinChars(std::string_view text, char* out, std::string_view joinChars) {
  const size_t lastSemicolon = text.rfind(';');  // one look keeps the walk linear
  const auto endsSoon = [text, lastSemicolon](size_t from) {
    if (lastSemicolon == text.npos || lastSemicolon < from) return true;
    return text.substr(from, kReferenceLimit).find(';') != text.npos;
  };
  size_t written = 0;
  for (size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const bool listed = joinChars.find(c) != joinChars.npos;
    const bool opensReference =
        c == '&' && at + 3 < text.size() && text[at + 1] == '#' && endsSoon(at);
    const bool hashOfReference =
        c == '#' && at > 0 && at + 2 < text.size() && text[at - 1] == '&' && endsSoon(at);
    if (listed && !opensReference && !hashOfReference) {
      const auto value = static_cast<signed char>(c);
      written += static_cast<size_t>(snprintf(out + written, 9, "&#%d;", value));
    } else {
      out[written++] = c;
    }
  }
  out[written] = '\0';
  return written;
}

}  // namespace vela
