#include "text/low_bytes.h"

#include <algorithm>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace vela {

namespace {

uint64_t MarksOfEach(std::string_view bytes) {
  uint64_t marks = 0;
  for (size_t i = 0; i < bytes.size(); ++i) {
    marks |= uint64_t{static_cast<unsigned char>(bytes[i]) <= ' '} << i;
  }
  return marks;
}

}  // namespace

uint64_t LowByteMarks(std::string_view text, size_t start) {
  constexpr size_t kBlock = 64;
#ifdef __SSE2__
  if (text.size() - start >= kBlock) {
    uint64_t marks = 0;
    const __m128i blanks = _mm_set1_epi8(' ');
    for (size_t i = 0; i < kBlock; i += sizeof blanks) {
      __m128i bytes;
      __builtin_memcpy(&bytes, text.data() + start + i, sizeof bytes);
      const __m128i isLow = _mm_cmpeq_epi8(_mm_min_epu8(bytes, blanks), bytes);
      marks |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(isLow))) << i;
    }
    return marks;
  }
#endif
  return MarksOfEach(text.substr(start, kBlock));
}

}  // namespace vela
