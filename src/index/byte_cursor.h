// byte_cursor.h: reading numbers from the bytes of an index file, which are never trusted.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "format/little_endian.h"

namespace vela {

// The little-endian number of up to 8 bytes at `offset`; bytes beyond the end of `bytes` count as
// 0.
inline uint64_t ReadLittleEndian(std::string_view bytes, size_t offset, size_t width) {
  uint64_t value = 0;
  if (bytes.size() >= sizeof value && offset <= bytes.size() - sizeof value && width != 0) {
    static_assert(std::endian::native == std::endian::little);
    memcpy(&value, bytes.data() + offset, sizeof value);
    return value & LargestNumber(width);
  }
  for (size_t i = 0; i < width && offset + i < bytes.size(); ++i) {
    value |= uint64_t{static_cast<unsigned char>(bytes[offset + i])} << (8 * i);
  }
  return value;
}

// Walks over bytes. The first read that does not fit sets `bad`, which stays set; every read after
// it gives 0 or an empty text.
struct ByteCursor {
  std::string_view rest;
  bool bad = false;
};

inline std::string_view Take(ByteCursor& cursor, size_t count) {
  if (cursor.bad || count > cursor.rest.size()) {
    cursor.bad = true;
    return {};
  }
  const std::string_view taken = cursor.rest.substr(0, count);
  cursor.rest.remove_prefix(count);
  return taken;
}

// The next `width` bytes (up to 8) as a little-endian number.
inline uint64_t TakeLittleEndian(ByteCursor& cursor, size_t width) {
  return ReadLittleEndian(Take(cursor, width), 0, width);
}

}  // namespace vela
