// little_endian.h: the numbers of the binary files: unsigned, the lowest byte first.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela {

// The largest number of `width` bytes, 1 to 8.
constexpr uint64_t LargestNumber(size_t width) { return ~uint64_t{0} >> (64 - 8 * width); }

// The bytes that `number` takes, 1 to 8.
constexpr size_t WidthOf(uint64_t number) {
  size_t width = 1;
  while (number > LargestNumber(width)) ++width;
  return width;
}

}  // namespace vela
