// find_byte.h: where a byte stands next, which in text and markup is mostly near.
#pragma once

#include <bit>
#include <cstddef>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace vela::indexer {

// The place of the first `c` at or behind `from`, which may be any; text.size() when there is none.
inline size_t FindByte(std::string_view text, char c, size_t from) {
  if (from >= text.size()) return text.size();
#ifdef __SSE2__
  constexpr size_t kNear = 4;  // pieces, beyond which the library is faster
  const __m128i wanted = _mm_set1_epi8(c);
  for (size_t i = 0; i < kNear && text.size() - from >= sizeof wanted; ++i) {
    const auto* const at = reinterpret_cast<const __m128i*>(text.data() + from);
    const int equal = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(at), wanted));
    if (equal != 0)
      return from + static_cast<size_t>(std::countr_zero(static_cast<unsigned>(equal)));
    from += sizeof wanted;
  }
#endif
  const void* const found = memchr(text.data() + from, c, text.size() - from);
  if (found == nullptr) return text.size();
  return static_cast<size_t>(static_cast<const char*>(found) - text.data());
}

}  // namespace vela::indexer
