// checksum.h: tells changed bytes from the ones that were written. No protection against forging.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vela {

static_assert(std::endian::native == std::endian::little, "numbers are loaded as they lie");

// The checksum of `bytes`; `seed` tells equal bytes at different places apart. Any change within
// eight bytes at a multiple of eight changes it.
inline uint64_t Checksum(std::string_view bytes, uint64_t seed) {
  constexpr uint64_t kOdd = 0x9E3779B97F4A7C15U;
  constexpr size_t kLanes = 4;  // side by side: no multiplication waits for the one before
  uint64_t lanes[kLanes] = {seed ^ bytes.size(), seed + kOdd, ~seed, kOdd - seed};
  const auto take = [](uint64_t& lane, uint64_t word) {
    lane = (lane ^ word) * kOdd;
    lane ^= lane >> 29;
  };
  size_t at = 0;
  for (; at + sizeof lanes <= bytes.size(); at += sizeof lanes) {
    uint64_t words[kLanes];
    memcpy(words, bytes.data() + at, sizeof words);
    for (size_t i = 0; i < kLanes; ++i) take(lanes[i], words[i]);
  }
  for (; at < bytes.size(); at += sizeof(uint64_t)) {
    uint64_t word = 0;
    memcpy(&word, bytes.data() + at, std::min(sizeof word, bytes.size() - at));
    take(lanes[0], word);
  }
  uint64_t sum = seed;
  for (const uint64_t lane : lanes) take(sum, lane);
  return sum;
}

}  // namespace vela
