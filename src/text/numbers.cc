#include "text/numbers.h"

#include "text/ascii.h"

namespace vela {

namespace {

// Passes over leading white space and one sign; true for "-".
bool SkipToDigits(std::string_view text, size_t& at) {
  while (at < text.size() && IsSpace(text[at])) ++at;
  if (at == text.size() || (text[at] != '+' && text[at] != '-')) return false;
  return text[at++] == '-';
}

}  // namespace

DecimalResult ScanDecimal32(std::string_view text) {
  size_t at = 0;
  const bool negative = SkipToDigits(text, at);
  if (at == text.size() || !IsDigit(text[at])) return {};
  int64_t magnitude = 0;
  for (; at < text.size() && IsDigit(text[at]); ++at) {
    // One above INT32_MAX is enough to saturate on either side.
    if (magnitude <= INT32_MAX) magnitude = magnitude * 10 + (text[at] - '0');
  }
  return {SaturateToInt32(negative ? -magnitude : magnitude), at};
}

int32_t ReadDecimal32(std::string_view text) { return ScanDecimal32(text).value; }

int64_t ReadDecimal64(std::string_view text) {
  size_t at = 0;
  const bool negative = SkipToDigits(text, at);
  int64_t value = 0;
  for (; at < text.size() && IsDigit(text[at]); ++at) {
    const int64_t digit = negative ? '0' - text[at] : text[at] - '0';
    if (__builtin_mul_overflow(value, 10, &value) || __builtin_add_overflow(value, digit, &value)) {
      return negative ? INT64_MIN : INT64_MAX;
    }
  }
  return value;
}

namespace {

uint64_t ReadDecimalModulo(std::string_view text) {
  size_t at = 0;
  while (at < text.size() && text[at] == ' ') ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (negative) ++at;
  uint64_t value = 0;
  for (; at < text.size() && IsDigit(text[at]); ++at) {
    value = value * 10 + static_cast<uint64_t>(text[at] - '0');
  }
  return negative ? 0 - value : value;
}

}  // namespace

int32_t ReadDecimalWrap32(std::string_view text) {
  return WrapToInt32(WrapToUint32(ReadDecimalModulo(text)));
}

int64_t ReadDecimalWrap64(std::string_view text) {
  return static_cast<int64_t>(ReadDecimalModulo(text));
}

}  // namespace vela
