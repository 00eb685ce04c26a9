// eight_bytes.h: looking at text eight bytes at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vela::indexer {

inline constexpr uint64_t kHighBits = 0x8080808080808080;

// The bytes from `at` on, in whatever order.
inline uint64_t EightBytes(const char* at) {
  uint64_t bytes = 0;
  memcpy(&bytes, at, sizeof bytes);
  return bytes;
}

// Whether one of the bytes is less than `limit`, 0x80 at most.
inline bool HoldsLess(uint64_t bytes, unsigned char limit) {
  constexpr uint64_t kEach = 0x0101010101010101;
  return ((bytes - kEach * limit) & ~bytes & kHighBits) != 0;
}

// The end of the ASCII characters from `begin` on.
inline size_t AsciiEnd(std::string_view text, size_t begin) {
  for (; text.size() - begin >= sizeof(uint64_t); begin += sizeof(uint64_t)) {
    if ((EightBytes(text.data() + begin) & kHighBits) != 0) break;
  }
  while (begin < text.size() && static_cast<unsigned char>(text[begin]) < 0x80) ++begin;
  return begin;
}

inline bool IsAsciiText(std::string_view text) { return AsciiEnd(text, 0) == text.size(); }

}  // namespace vela::indexer
