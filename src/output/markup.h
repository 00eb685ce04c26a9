// markup.h: text made safe for HTML and for addresses.
#pragma once

#include <cstddef>
#include <string_view>

#include "text/fixed_text.h"
#include "text/percent_code.h"

namespace vela {

// Replaces "&", "<", ">", the double quote and "'" in the text of `length` bytes by numeric
// references, in this order, in a buffer of `capacity` bytes. A step whose result would not fit is
// left out and the others still run, so a text without room comes back partly escaped; `scratch`
// holds `capacity` bytes. Returns the new length.
size_t HtmlEscape(char* text, size_t length, size_t capacity, char* scratch);

// Writes the escaped form of `text`, which came with the request, to `out` of `capacity` bytes,
// terminated. Never partly escaped: where the whole would not fit, the text is first cut to its
// longest beginning whose whole escape fits. Returns the length.
size_t EscapeRequestText(std::string_view text, char* out, size_t capacity);

template <size_t N>
FixedText<N> EscapedRequestText(std::string_view text) {
  FixedText<N> out;
  EscapeRequestText(text, out.bytes, N);
  return out;
}

// Writes `text` form-encoded to `out` of `capacity` bytes, terminated: letters, digits, "-" and "_"
// stay, a blank becomes "+", any other byte "%" and its upper-case hexadecimal number without
// leading zero. Kept: a byte below 16 ends the text behind its one digit (unit markup_test).
// Returns the length.
size_t UrlEncode(std::string_view text, char* out, size_t capacity);

// Percent-encodes the bytes of `text` that could end an attribute or a script text: double quotes,
// apostrophes, "<", ">", "&", backslashes and control bytes. All others stay as they are.
template <size_t N>
void AppendSafeAddress(FixedText<N>& out, std::string_view text);

// Joins an address and a parameter: "?" where the base holds none, "&amp;" otherwise. What passes
// the size of `out` is cut.
template <size_t N>
void BuildUrl(FixedText<N>& out, std::string_view base, std::string_view first,
              std::string_view second) {
  Set(out, base);
  Append(out, base.find('?') == base.npos ? "?" : "&amp;");
  Append(out, first);
  Append(out, second);
}

// The same, with the fragment of the base (from its first "#" on) put back at the end.
template <size_t N>
void BuildUrlKeepFragment(FixedText<N>& out, std::string_view base, std::string_view first,
                          std::string_view second) {
  const size_t hash = base.find('#');
  Set(out, base.substr(0, hash));
  Append(out, base.find('?') == base.npos ? "?" : "&amp;");
  Append(out, first);
  Append(out, second);
  if (hash != base.npos) Append(out, base.substr(hash));
}

// Whether `c` must not stand unencoded in an address that is written into an attribute or a script.
bool IsUnsafeInAddress(char c);

template <size_t N>
void AppendSafeAddress(FixedText<N>& out, std::string_view text) {
  for (char c : text) {
    if (IsUnsafeInAddress(c)) {
      Append(out, PercentCode(c).view());
    } else {
      Append(out, {&c, 1});
    }
  }
}

}  // namespace vela
