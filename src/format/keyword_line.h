// keyword_line.h: the line of the text files of keywords (spelling.h, recommended.h,
// autocomplete.h), whose greatest length the setting MaxKeyWordLineLen gives.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela {

// The size of the buffer for a line: at least 2 bytes, its terminator included. A longer line is
// read in pieces.
constexpr size_t KeywordBufferSize(int32_t maxKeyWordLineLen) {
  return maxKeyWordLineLen < 2 ? 2 : static_cast<size_t>(maxKeyWordLineLen);
}
// The bytes of a line that is read whole, its line feed included; at least 1.
constexpr size_t KeywordLineLimit(size_t bufferSize) { return bufferSize - 1; }
// The MaxKeyWordLineLen with which a line of so many bytes, its line feed included, is read whole.
constexpr size_t KeywordBufferFor(size_t lineBytes) { return lineBytes + 1; }

}  // namespace vela
