// ascii_test.cc: character classes over every byte.

#include "text/ascii.h"

#include <gtest/gtest.h>

#include <string_view>

namespace vela {
namespace {

using namespace std::string_view_literals;

TEST(Ascii, ClassesHoldExactlyTheirCharacters) {
  constexpr std::string_view kDigits = "0123456789";
  constexpr std::string_view kUpper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  constexpr std::string_view kLower = "abcdefghijklmnopqrstuvwxyz";
  constexpr std::string_view kSpaces = " \t\n\v\f\r";
  constexpr std::string_view kPunctuation = "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
  for (int byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    const char c = static_cast<char>(byte);
    const auto in = [c](std::string_view set) { return set.find(c) != set.npos; };
    EXPECT_EQ(IsDigit(c), in(kDigits));
    EXPECT_EQ(IsUpper(c), in(kUpper));
    EXPECT_EQ(IsLower(c), in(kLower));
    EXPECT_EQ(IsAlpha(c), in(kUpper) || in(kLower));
    EXPECT_EQ(IsAlphaNumeric(c), in(kUpper) || in(kLower) || in(kDigits));
    EXPECT_EQ(IsSpace(c), in(kSpaces));
    EXPECT_EQ(IsControl(c), byte < 32 || byte == 127);
    EXPECT_EQ(IsPunctuation(c), in(kPunctuation));
    EXPECT_EQ(ToLowerAscii(c), in(kUpper) ? kLower[kUpper.find(c)] : c);
    EXPECT_EQ(ToUpperAscii(c), in(kLower) ? kUpper[kLower.find(c)] : c);
    constexpr std::string_view kHexDigits = "0123456789abcdef";
    const size_t value = kHexDigits.find(ToLowerAscii(c));
    EXPECT_EQ(HexDigitValue(c), value == kHexDigits.npos ? -1 : static_cast<int>(value));
  }
}

}  // namespace
}  // namespace vela
