// numbers.h: arithmetic and decimal reading of a 32-bit process, spelled out.
//
// The program answers as a process in which `int` and `long` have 32 bits, whatever it is compiled
// for. Every change of width or sign and every decimal number from outside goes through here.
#pragma once

#include <cfloat>
#include <cstdint>
#include <string_view>

namespace vela {

// Scores are rounded to `float` step by step; excess precision would change them.
static_assert(FLT_EVAL_METHOD == 0);

// `value`, or the nearest limit of int32_t.
constexpr int32_t SaturateToInt32(int64_t value) {
  if (value > INT32_MAX) return INT32_MAX;
  if (value < INT32_MIN) return INT32_MIN;
  return static_cast<int32_t>(value);
}

// Two's complement reinterpretation, modulo 2^32.
constexpr int32_t WrapToInt32(uint32_t value) { return static_cast<int32_t>(value); }
constexpr uint32_t WrapToUint32(uint64_t value) { return static_cast<uint32_t>(value); }

// Sums and products modulo 2^32.
constexpr int32_t WrapAdd32(int32_t a, int32_t b) {
  return WrapToInt32(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
constexpr int32_t WrapSub32(int32_t a, int32_t b) {
  return WrapToInt32(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

struct DecimalResult {
  int32_t value = 0;    // saturated at the limits of int32_t
  size_t consumed = 0;  // bytes read, leading white space included; 0 when there is no digit
};

// Reads as the C library reads a decimal "%d": leading white space, one sign, digits. Stops at the
// end of `text` or at a NUL. `consumed` is 0 when no digit stands there.
DecimalResult ScanDecimal32(std::string_view text);

// The value of ScanDecimal32, 0 when there is no number.
int32_t ReadDecimal32(std::string_view text);

// The same for 64 bits.
int64_t ReadDecimal64(std::string_view text);

// The reader of the dictionary and spelling files: leading blanks, one "-", digits up to the first
// other byte; wraps modulo 2^32 (2^64). An empty number is 0.
int32_t ReadDecimalWrap32(std::string_view text);
int64_t ReadDecimalWrap64(std::string_view text);

}  // namespace vela
