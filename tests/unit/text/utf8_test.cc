#include "text/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace vela {
namespace {

TEST(Utf8, DecodesCharacters) {
  const struct {
    const char* what;
    std::string text;
    char32_t character;
    size_t length;
  } kCases[] = {
      {"ASCII", "a", U'a', 1},
      {"NUL", std::string(1, '\0'), 0, 1},
      {"two bytes", "\xC2\x80", 0x80, 2},
      {"the last of two bytes", "\xDF\xBF", 0x7FF, 2},
      {"three bytes", "\xE0\xA0\x80", 0x800, 3},
      {"before the surrogates", "\xED\x9F\xBF", 0xD7FF, 3},
      {"behind the surrogates", "\xEE\x80\x80", 0xE000, 3},
      {"no character, but valid", "\xEF\xBF\xBF", 0xFFFF, 3},
      {"four bytes", "\xF0\x90\x80\x80", 0x10000, 4},
      {"the last of all", "\xF4\x8F\xBF\xBF", 0x10FFFF, 4},
      {"text behind it", "\xC3\xA9t\xC3\xA9", 0xE9, 2},
      {"a byte that goes on", "\x80", 0xFFFD, 1},
      {"an overlong blank", "\xC0\xA0", 0xFFFD, 1},
      {"overlong in three bytes", "\xE0\x9F\xBF", 0xFFFD, 1},
      {"overlong in four bytes", "\xF0\x8F\xBF\xBF", 0xFFFD, 1},
      {"a surrogate", "\xED\xA0\x80", 0xFFFD, 1},
      {"beyond the last", "\xF4\x90\x80\x80", 0xFFFD, 1},
      {"a lead byte of none", "\xF5\x80\x80\x80", 0xFFFD, 1},
      {"0xFF", "\xFF", 0xFFFD, 1},
      {"two bytes cut short", "\xC3", 0xFFFD, 1},
      {"three bytes cut short", "\xE2\x80", 0xFFFD, 1},
      {"four bytes cut short", "\xF0\x9F\x9A", 0xFFFD, 1},
      {"broken by a letter", "\xE2\x80z", 0xFFFD, 1},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    size_t length = 0;
    EXPECT_EQ(DecodeCharacter(c.text, 0, length), c.character);
    EXPECT_EQ(length, c.length);
  }
}

}  // namespace
}  // namespace vela
