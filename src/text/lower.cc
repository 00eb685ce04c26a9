#include "text/lower.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "text/ascii.h"

namespace vela {

namespace {

struct LowerRange {
  uint32_t first;
  uint32_t last;
  uint32_t step;
  int32_t distance;
};

constexpr LowerRange kLowerRanges[] = {
#include "text/lower_table.inc"
};

uint32_t LowerCodePoint(uint32_t code) {
  const auto* range =
      std::lower_bound(std::begin(kLowerRanges), std::end(kLowerRanges), code,
                       [](const LowerRange& r, uint32_t value) { return r.last < value; });
  if (range == std::end(kLowerRanges) || code < range->first) return code;
  if ((code - range->first) % range->step != 0) return code;
  return static_cast<uint32_t>(static_cast<int64_t>(code) + range->distance);
}

// The code point of a whole, shortest-form sequence of 2 to 4 bytes; 0 for anything else.
uint32_t Decode(std::string_view sequence) {
  static constexpr unsigned char kLeadMask[] = {0, 0, 0x1F, 0x0F, 0x07};
  static constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  uint32_t code = static_cast<unsigned char>(sequence[0]) & kLeadMask[sequence.size()];
  for (char c : sequence.substr(1)) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte & 0x3Fu);
  }
  return code < kSmallest[sequence.size()] ? 0 : code;
}

void Encode(uint32_t code, size_t length, char* out) {
  static constexpr unsigned char kLead[] = {0, 0, 0xC0, 0xE0, 0xF0};
  for (size_t i = length - 1; i > 0; --i) {
    out[i] = static_cast<char>(0x80 | (code & 0x3F));
    code >>= 6;
  }
  out[0] = static_cast<char>(kLead[length] | code);
}

constexpr uint32_t kCapitalIWithDot = 0x130;

}  // namespace

void LowerSingleByte(char* text, size_t length) {
  for (size_t i = 0; i < length; ++i) text[i] = ToLowerAscii(text[i]);
}

size_t Utf8Length(unsigned char lead) {
  if (lead < 0xC0 || lead >= 0xF8) return 1;
  if (lead < 0xE0) return 2;
  return lead < 0xF0 ? 3 : 4;
}

LoweredCharacter LowerCharacter(std::string_view text) {
  LoweredCharacter result;
  if (text.empty()) return result;
  const size_t wanted = Utf8Length(static_cast<unsigned char>(text[0]));
  result.length = std::min(wanted, text.size());
  text.copy(result.bytes, result.length);
  if (wanted == 1) {
    result.bytes[0] = ToLowerAscii(text[0]);
    return result;
  }
  if (wanted > text.size()) return result;
  const uint32_t code = Decode(text.substr(0, wanted));
  if (code == kCapitalIWithDot) return {{'i'}, 1};
  const uint32_t lower = LowerCodePoint(code);
  if (lower != code) Encode(lower, wanted, result.bytes);
  return result;
}

void LowerUtf8(char* text, size_t length) {
  size_t at = 0;
  while (at < length) {
    if (static_cast<signed char>(text[at]) >= 0) {
      text[at] = ToLowerAscii(text[at]);
      ++at;
      continue;
    }
    // The small letters U+03C0 and U+0440 have no lower-case form and so stay as they are.
    const LoweredCharacter lowered = LowerCharacter({text + at, length - at});
    memcpy(text + at, lowered.bytes, lowered.length);
    at += lowered.length;
  }
}

void LowerText(char* text, size_t length, bool utf8) {
  if (utf8) {
    LowerUtf8(text, length);
  } else {
    LowerSingleByte(text, length);
  }
}

}  // namespace vela
