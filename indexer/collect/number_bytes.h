// number_bytes.h: lists of numbers that are mostly small: 1 to 5 bytes each, 7 bits a byte, the
// lowest first, bit 7 set where another byte follows.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vela::indexer {

inline void AppendNumber(uint32_t number, std::string& bytes) {
  for (; number >= 0x80; number >>= 7) bytes += static_cast<char>(number | 0x80);
  bytes += static_cast<char>(number);
}

// Takes the next number off the start of `bytes`, which is not empty and was written by
// AppendNumber; of other bytes whatever they make.
inline uint32_t TakeNumber(std::string_view& bytes) {
  const uint32_t first = bytes.empty() ? 0x80 : static_cast<unsigned char>(bytes.front());
  if (first < 0x80) {
    bytes.remove_prefix(1);
    return first;
  }
  uint32_t number = 0;
  for (unsigned shift = 0; !bytes.empty(); shift += 7) {
    const auto byte = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    if (shift < 32) number |= (byte & 0x7FU) << shift;
    if (byte < 0x80) break;
  }
  return number;
}

}  // namespace vela::indexer
