// packed_bytes.h: bytes in less room (Zstandard).
#pragma once

#include <string>
#include <string_view>

namespace vela::indexer {

// Throws std::bad_alloc.
std::string Packed(std::string_view bytes);

// False when `packed` is not what Packed has made, whole, or stands for more than `limit` bytes:
// `bytes` is then empty. Throws std::bad_alloc.
[[nodiscard]] bool Unpack(std::string_view packed, size_t limit, std::string& bytes);

}  // namespace vela::indexer
