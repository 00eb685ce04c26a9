#include "indexer/source/fingerprint.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cstdio>

namespace vela::indexer {

Fingerprint FingerprintOf(std::string_view bytes) {
  const XXH128_hash_t hash = XXH3_128bits(bytes.data(), bytes.size());
  return {.high = hash.high64, .low = hash.low64};
}

std::string TextOf(const Fingerprint& fingerprint) {
  char text[40] = "";
  snprintf(text, sizeof text, "%016llx%016llx", static_cast<unsigned long long>(fingerprint.high),
           static_cast<unsigned long long>(fingerprint.low));
  return text;
}

}  // namespace vela::indexer
