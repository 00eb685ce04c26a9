// percent_code.h: bytes written as "%" and two hexadecimal digits, as addresses carry them.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "text/ascii.h"

namespace vela {

inline constexpr size_t kPercentCodeLength = 3;

// The code of a byte, with upper-case digits.
class PercentCode {
 public:
  explicit constexpr PercentCode(char c)
      : bytes_{'%', Digit(static_cast<unsigned char>(c) >> 4),
               Digit(static_cast<unsigned char>(c) & 15)} {}
  constexpr std::string_view view() const { return {bytes_.data(), bytes_.size()}; }

 private:
  static constexpr char Digit(int value) { return "0123456789ABCDEF"[value]; }

  std::array<char, kPercentCodeLength> bytes_;
};

// The number (0 to 255) of the byte whose code `text` begins with, or -1.
constexpr int ReadPercentCode(std::string_view text) {
  if (text.size() < kPercentCodeLength || text[0] != '%') return -1;
  const int high = HexDigitValue(text[1]);
  const int low = HexDigitValue(text[2]);
  return high < 0 || low < 0 ? -1 : high * 16 + low;
}

}  // namespace vela
