// seek.h: positions in the binary index files.
#pragma once

#include <cstdint>

namespace vela {

// Whether a file can be positioned at `offset`: file positions are signed 64-bit numbers. A
// position beyond the end of a file can be taken; reading there finds nothing.
constexpr bool CanSeekTo(uint64_t offset) { return offset <= INT64_MAX; }

}  // namespace vela
