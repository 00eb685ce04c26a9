#include "indexer/state/packed_bytes.h"

#include <zstd.h>

#include <new>

namespace vela::indexer {

namespace {

// The quickest way: a harder one makes blocks a tenth smaller and takes as long as reading the
// page.
constexpr int kLevel = 1;

}  // namespace

std::string Packed(std::string_view bytes) {
  std::string packed(ZSTD_compressBound(bytes.size()), '\0');
  const size_t size =
      ZSTD_compress(packed.data(), packed.size(), bytes.data(), bytes.size(), kLevel);
  if (ZSTD_isError(size) != 0)
    throw std::bad_alloc();  // the room is enough: there is no other fault
  packed.resize(size);
  packed.shrink_to_fit();
  return packed;
}

bool Unpack(std::string_view packed, size_t limit, std::string& bytes) {
  bytes.clear();
  // Both ways of telling none are above every limit.
  const unsigned long long size = ZSTD_getFrameContentSize(packed.data(), packed.size());
  if (size == ZSTD_CONTENTSIZE_UNKNOWN || size == ZSTD_CONTENTSIZE_ERROR || size > limit) {
    return false;
  }
  bytes.resize(size);
  const size_t got = ZSTD_decompress(bytes.data(), bytes.size(), packed.data(), packed.size());
  if (ZSTD_isError(got) == 0 && got == size) return true;
  bytes.clear();
  return false;
}

}  // namespace vela::indexer
