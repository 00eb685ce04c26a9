// encode_character.h: one character as UTF-8.
#pragma once

#include <cstddef>

namespace vela::indexer {

inline constexpr size_t kCharacterBytesLimit = 4;

// Writes the character `c`, no surrogate and U+10FFFF at most, to `out`, which has room for
// kCharacterBytesLimit bytes. Returns how many it took.
inline size_t EncodeCharacter(char32_t c, char* out) {
  size_t length = 0;
  const auto put = [out, &length](char32_t byte) { out[length++] = static_cast<char>(byte); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | c >> 6);
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | c >> 12);
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | c >> 18);
    put(0x80 | (c >> 12 & 0x3F));
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  }
  return length;
}

}  // namespace vela::indexer
