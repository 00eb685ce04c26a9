// numbers_test.cc: decimal reading and arithmetic as in 32 bits.

#include "text/numbers.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace vela {
namespace {

using namespace std::string_view_literals;

TEST(Numbers, SaturateToInt32) {
  const struct {
    const char* what;
    int64_t input;
    int32_t expected;
  } cases[] = {
      {"zero", 0, 0},
      {"greatest", 2147483647, 2147483647},
      {"one above", 2147483648, 2147483647},
      {"smallest", -2147483648LL, INT32_MIN},
      {"one below", -2147483649LL, INT32_MIN},
      {"greatest of 64 bits", INT64_MAX, INT32_MAX},
      {"smallest of 64 bits", INT64_MIN, INT32_MIN},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(SaturateToInt32(c.input), c.expected);
  }
}

TEST(Numbers, SumsAndDifferencesWrap) {
  EXPECT_EQ(WrapAdd32(1, 2), 3);
  EXPECT_EQ(WrapAdd32(INT32_MAX, 1), INT32_MIN);
  EXPECT_EQ(WrapAdd32(INT32_MIN, -1), INT32_MAX);
  EXPECT_EQ(WrapSub32(1, 2), -1);
  EXPECT_EQ(WrapSub32(INT32_MIN, 1), INT32_MAX);
  EXPECT_EQ(WrapSub32(INT32_MAX, -1), INT32_MIN);
  EXPECT_EQ(WrapToInt32(4294967295u), -1);
  EXPECT_EQ(WrapToInt32(2147483648u), INT32_MIN);
  EXPECT_EQ(WrapToUint32(4294967296u), 0u);
  EXPECT_EQ(WrapToUint32(4294967297u), 1u);
}

TEST(Numbers, ScanDecimalSaturates) {
  const struct {
    const char* what;
    std::string_view input;
    int32_t value;
    size_t consumed;
  } cases[] = {
      {"nothing", "", 0, 0},
      {"plain", "12", 12, 2},
      {"text after the digits is left", "12abc", 12, 2},
      {"a minus", "-7", -7, 2},
      {"a plus", "+7", 7, 2},
      {"blanks before", "  -7", -7, 4},
      {"every kind of white space before", " \t\n\v\f\r3", 3, 7},
      {"leading zeros", "007", 7, 3},
      {"a lone minus", "-", 0, 0},
      {"a lone plus", "+", 0, 0},
      {"two signs", "--1", 0, 0},
      {"two different signs", "+-1", 0, 0},
      {"a blank behind the sign", "- 5", 0, 0},
      {"text", "abc", 0, 0},
      {"blanks alone", "   ", 0, 0},
      {"hexadecimal is a zero", "0x10", 0, 1},
      {"a NUL ends the number",
       "12\0"
       "34"sv,
       12, 2},
      {"a NUL before the number",
       "\0"
       "34"sv,
       0, 0},
      {"the greatest", "2147483647", INT32_MAX, 10},
      {"one above", "2147483648", INT32_MAX, 10},
      {"the smallest", "-2147483648", INT32_MIN, 11},
      {"one below", "-2147483649", INT32_MIN, 11},
      {"above 32 bits, not wrapped", "4294967297", INT32_MAX, 10},
      {"99999999999", "99999999999", INT32_MAX, 11},
      {"-99999999999", "-99999999999", INT32_MIN, 12},
      {"above 64 bits", "18446744073709551617", INT32_MAX, 20},
      {"minus above 64 bits", "-18446744073709551617", INT32_MIN, 21},
      {"many zeros before the number", "000000000000000000000000000005", 5, 30},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const DecimalResult result = ScanDecimal32(c.input);
    EXPECT_EQ(result.value, c.value);
    EXPECT_EQ(result.consumed, c.consumed);
    EXPECT_EQ(ReadDecimal32(c.input), c.value);
  }
}

TEST(Numbers, ScanDecimalReadsAHundredThousandDigits) {
  const std::string digits(100000, '9');
  const DecimalResult result = ScanDecimal32(digits);
  EXPECT_EQ(result.value, INT32_MAX);
  EXPECT_EQ(result.consumed, digits.size());
}

TEST(Numbers, ReadDecimal64Saturates) {
  const struct {
    const char* what;
    const char* input;
    int64_t value;
  } cases[] = {
      {"empty", "", 0},
      {"a number behind white space", " \t28", 28},
      {"a sign", "+28", 28},
      {"a minus", "-28", -28},
      {"two signs", "+-28", 0},
      {"behind letters", "x28", 0},
      {"before letters", "28x", 28},
      {"the largest", "9223372036854775807", INT64_MAX},
      {"one above", "9223372036854775808", INT64_MAX},
      {"the smallest", "-9223372036854775808", INT64_MIN},
      {"one below", "-9223372036854775809", INT64_MIN},
      {"above 64 bits", "18446744073709551615", INT64_MAX},
      {"far above", "99999999999999999999999999", INT64_MAX},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(ReadDecimal64(c.input), c.value);
  }
}

TEST(Numbers, ReadDecimalWrapIsModulo) {
  const struct {
    const char* what;
    std::string_view input;
    int32_t wrapped32;
    int64_t wrapped64;
  } cases[] = {
      {"nothing", "", 0, 0},
      {"plain", "42", 42, 42},
      {"blanks before", "  42", 42, 42},
      {"a minus", "-1", -1, -1},
      {"blanks and a minus", "  -17", -17, -17},
      {"a plus is no digit", "+5", 0, 0},
      {"a blank behind the minus", "- 5", 0, 0},
      {"one minus only", "--5", 0, 0},
      {"stops at the first other byte", "12x34", 12, 12},
      {"greatest of 32 bits", "2147483647", INT32_MAX, 2147483647},
      {"wraps to the smallest", "2147483648", INT32_MIN, 2147483648},
      {"wraps to -1", "4294967295", -1, 4294967295},
      {"wraps to 0", "4294967296", 0, 4294967296},
      {"99999999999 modulo 2^32", "99999999999", 1215752191, 99999999999},
      {"greatest of 64 bits", "9223372036854775807", -1, INT64_MAX},
      {"all bits of 64", "18446744073709551615", -1, -1},
      {"2^64", "18446744073709551616", 0, 0},
      {"2^64 + 5", "18446744073709551621", 5, 5},
      {"minus 2^64 - 5", "-18446744073709551621", -5, -5},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(ReadDecimalWrap32(c.input), c.wrapped32);
    EXPECT_EQ(ReadDecimalWrap64(c.input), c.wrapped64);
  }
}

}  // namespace
}  // namespace vela
