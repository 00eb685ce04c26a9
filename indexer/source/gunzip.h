// gunzip.h: what gzip or zlib has compressed, within a limit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vela::indexer {

enum class GunzipStatus : uint8_t {
  kOk,
  kDamaged,   // no compressed data, damaged, or cut off: `out` holds what came before
  kTooLarge,  // `out` holds as much as the limit allows
};

inline bool LooksGzipped(std::string_view bytes) { return bytes.starts_with("\x1F\x8B"); }

// Unpacks `bytes`, several gzip members one behind the other or one zlib stream, to `out`, of which
// there will be at most `limit` bytes. Throws std::bad_alloc when there is no memory.
[[nodiscard]] GunzipStatus Gunzip(std::string_view bytes, size_t limit, std::string& out);

}  // namespace vela::indexer
