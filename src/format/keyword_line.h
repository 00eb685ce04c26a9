// keyword_line.h: the line of the text files of keywords (spelling.h, recommended.h,
// autocomplete.h), whose greatest length the setting MaxKeyWordLineLen gives.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela {

// The bytes of the longest line that is read whole, its line feed included; at least 1. A longer
// one is read in pieces of so many bytes.
constexpr size_t KeywordLineLimit(int64_t maxKeyWordLineLen) {
  return maxKeyWordLineLen < 2 ? 1 : static_cast<size_t>(maxKeyWordLineLen - 1);
}
// The MaxKeyWordLineLen with which a line of so many bytes, its line feed included, is read whole.
constexpr size_t KeywordLineLenFor(size_t lineBytes) { return lineBytes + 1; }

}  // namespace vela
