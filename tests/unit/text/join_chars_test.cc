// join_chars_test.cc: the round trip of join characters through numeric references.

#include "text/join_chars.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace vela {
namespace {

std::string Decode(std::string_view text, std::string_view set) {
  std::vector<char> out(text.size() + 1, 'x');
  const size_t written = DecodeJoinChars(text, out.data(), set);
  EXPECT_EQ(strlen(out.data()), written);
  return out.data();
}

std::string Encode(std::string_view text, std::string_view set) {
  std::vector<char> out(40 * text.size() + 1, 'x');
  const size_t written = EncodeJoinChars(text, out.data(), set);
  EXPECT_EQ(strlen(out.data()), written);
  return out.data();
}

TEST(JoinChars, AHyphenGoesThereAndBack) {
  EXPECT_EQ(Encode("a-b", "-"), "a&#45;b");
  EXPECT_EQ(Decode("a&#45;b", "-"), "a-b");
}

TEST(JoinChars, AReferenceInTheTextIsNotEncodedTwice) {
  EXPECT_EQ(Encode("a&#45;b", "-&#"), "a&#45;b");
  EXPECT_EQ(Encode("a&#45;b-c", "-&#"), "a&#45;b&#45;c");
}

TEST(JoinChars, Decodes) {
  const struct {
    const char* what;
    std::string_view input;
    std::string_view set;
    std::string_view expected;
  } cases[] = {
      {"nothing", "", "-", ""},
      {"no reference", "a-b & c", "-", "a-b & c"},
      {"not in the set", "a&#45;b", ".", "a&#45;b"},
      {"an empty set", "a&#45;b", "", "a&#45;b"},
      {"at the start and at the end", "&#45;a&#45;", "-", "-a-"},
      {"several kinds", "a&#45;b&#46;c", "-.", "a-b.c"},
      {"text after the digits is ignored", "a&#45x;b", "-", "a-b"},
      {"leading zeros within the limit", "&#00045;", "-", "-"},
      {"a semicolon 7 bytes behind", "&#00045;a", "-", "-a"},
      {"a semicolon 8 bytes behind", "&#000045;a", "-", "&#000045;a"},
      {"no semicolon at all", "a&#45b", "-", "a&#45b"},
      {"modulo 256", "&#301;", "-", "-"},
      {"a negative number", "caf&#-23;", "\xE9", "caf\xE9"},
      {"its positive form", "caf&#233;", "\xE9", "caf\xE9"},
      {"hexadecimal", "a&#x2d;b", "-", "a-b"},
      {"hexadecimal in capital digits", "a&#x2D;b", "-", "a-b"},
      {"hexadecimal not in the set", "a&#x2d;b", ".", "a&#x2d;b"},
      {"hexadecimal digits that end early are 0", "a&#x2dz;b", "-", "a"},
      {"no hexadecimal digits are 0", "a&#x;b", "-", "a"},
      {"a blank before hexadecimal digits", "a&#x 2d;b", "-", "a-b"},
      {"a negative hexadecimal number", "a&#x-d3;b", "-", "a-b"},
      {"a sign alone is 0", "a&#x-;b", "-", "a"},
      {"hexadecimal digits behind 0x", "a&#x0x2d;b", "-", "a-b"},
      {"0x alone is 0", "a&#x0x;b", "-", "a"},
      {"a capital X is no hexadecimal sign", "a&#X2d;b", "-", "a"},
      {"the reference 0 ends the text", "a&#0;b", "-", "a"},
      {"a malformed one ends the text, too", "a&#;b", "-", "a"},
      {"a malformed one with letters", "a&#abc;b", "-", "a"},
      {"too short behind the ampersand", "a&#;", "-", "a&#;"},
      {"named references stay", "a&amp;b", "&", "a&amp;b"},
      {"an ampersand before a reference", "&&#45;", "-", "&-"},
      {"what was decoded is not looked at again", "&#38;#45;", "&-", "&#45;"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Decode(c.input, c.set), c.expected);
  }
}

TEST(JoinChars, Encodes) {
  const struct {
    const char* what;
    std::string_view input;
    std::string_view set;
    std::string_view expected;
  } cases[] = {
      {"nothing", "", "-", ""},
      {"not in the set", "a-b", ".", "a-b"},
      {"an empty set", "a-b", "", "a-b"},
      {"at the start and at the end", "-a-", "-", "&#45;a&#45;"},
      {"several kinds", "a-b.c", "-.", "a&#45;b&#46;c"},
      {"a byte from 0x80 up is negative", "caf\xE9", "\xE9", "caf&#-23;"},
      {"the lowest of them", "\x80", "\x80", "&#-128;"},
      {"the highest of them", "\xFF", "\xFF", "&#-1;"},
      {"an ampersand that opens nothing", "a&b", "&", "a&#38;b"},
      {"a hash behind a letter", "c#", "#", "c&#35;"},
      {"a hash at the start", "#tag", "#", "&#35;tag"},
      {"an ampersand of a reference", "&#45;x", "&", "&#45;x"},
      {"a hash of a reference", "&#45;x", "#", "&#45;x"},
      {"the semicolon of a reference is no part of it", "&#45;x", ";", "&#45&#59;x"},
      {"the semicolon 7 bytes behind the ampersand", "&#00045;x", "&", "&#00045;x"},
      {"the semicolon 8 bytes behind the ampersand", "&#000045;x", "&", "&#38;#000045;x"},
      {"the semicolon 7 bytes behind the hash", "&#000045;x", "#", "&#000045;x"},
      {"the semicolon 8 bytes behind the hash", "&#0000045;x", "#", "&&#35;0000045;x"},
      {"no semicolon at all counts as a reference", "a&#45b", "&#", "a&#45b"},
      {"no semicolon behind, one before", ";&#45b", "&#", ";&#45b"},
      {"two bytes behind the ampersand are too few", "a&#4", "&", "a&#38;#4"},
      {"one byte behind the hash is too few", "a&#4", "#", "a&&#35;4"},
      {"an ampersand before something else", "&amp;", "&", "&#38;amp;"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Encode(c.input, c.set), c.expected);
  }
}

TEST(JoinChars, RoundTripOfPlainText) {
  const std::string_view set = "-_.'$+@\xE9";
  for (const std::string_view text :
       {"e-mail", "a.b_c", "rock 'n' roll", "caf\xE9 $5 c++ x@y", "---", "plain"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(Decode(Encode(text, set), set), text);
  }
}

TEST(JoinChars, TheLargestGrowthFitsInFortyBytesForOne) {
  const std::string text(1000, '\x80');
  std::string expected;
  for (int i = 0; i < 1000; ++i) expected += "&#-128;";
  EXPECT_EQ(Encode(text, "\x80"), expected);
}

}  // namespace
}  // namespace vela
