// edit.h: trimming, replacing and finding in text.
#pragma once

#include <cstddef>
#include <string_view>

#include "text/fixed_text.h"

namespace vela {

// `text` without any of `characters` at its ends.
std::string_view TrimCharacters(std::string_view text, std::string_view characters);

// `text` without the blanks, tabs, line feeds and carriage returns at its ends.
// Kept: a text of nothing but these stays as it is (unit edit_test).
std::string_view TrimWhitespace(std::string_view text);

// The same, with a text of nothing but blanks emptied.
std::string_view TrimAll(std::string_view text);

// Replaces every byte of `text` that stands in `from` by the one at the same place in `to`; both
// have the same length.
void ReplaceCharacters(char* text, size_t length, std::string_view from, std::string_view to);

// Replaces every `from` in the `length` bytes of `text` by `to`, left to right. The result must be
// shorter than `capacity` bytes; true when it is and was written back (with its terminator and
// `*length` set), or when there was nothing to do. False, and `text` untouched, when it would not
// fit. `scratch` holds `capacity` bytes. An empty `from` replaces nothing.
bool ReplaceAll(char* text, size_t* length, size_t capacity, char* scratch, std::string_view from,
                std::string_view to);

// ReplaceAll within a fixed text.
template <size_t N>
bool ReplaceAll(FixedText<N>& text, std::string_view from, std::string_view to) {
  char scratch[N];
  size_t length = View(text).size();
  return ReplaceAll(text.bytes, &length, N, scratch, from, to);
}

// The offset of `word` in `text` without regard to case (as LowerText folds it), npos when it is
// not there or memory for copies of long texts is out. A `limit` above 0 searches only that many
// bytes of the text.
size_t FindNoCase(std::string_view text, std::string_view word, bool utf8, size_t limit = 0);

}  // namespace vela
