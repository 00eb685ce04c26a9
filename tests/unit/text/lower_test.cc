// lower_test.cc: lower-casing in the two text modes.

#include "text/lower.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace vela {
namespace {

std::string SingleByte(std::string text) {
  LowerSingleByte(text.data(), text.size());
  return text;
}

std::string Utf8(std::string text) {
  LowerUtf8(text.data(), text.size());
  return text;
}

std::string Character(std::string_view text) {
  const LoweredCharacter lowered = LowerCharacter(text);
  return {lowered.bytes, lowered.length};
}

std::string Encoded(uint32_t code) {
  const auto tail = [code](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) return {static_cast<char>(code)};
  if (code < 0x800) return {static_cast<char>(0xC0 | code >> 6), tail(0)};
  if (code < 0x10000) return {static_cast<char>(0xE0 | code >> 12), tail(6), tail(0)};
  return {static_cast<char>(0xF0 | code >> 18), tail(12), tail(6), tail(0)};
}

TEST(Lower, SingleByteChangesTheTwentySixLettersOnly) {
  for (int byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    const bool letter = byte >= 'A' && byte <= 'Z';
    EXPECT_EQ(SingleByte({static_cast<char>(byte)})[0],
              static_cast<char>(letter ? byte + 0x20 : byte));
  }
  EXPECT_EQ(SingleByte("Hello, WORLD [@Z`]"), "hello, world [@z`]");
}

TEST(Lower, SingleByteLeavesCapitalEWithAcuteOfLatin1) {
  EXPECT_EQ(SingleByte("\xC9tude"), "\xC9tude");
}

TEST(Lower, Utf8LengthComesFromTheFirstByte) {
  const struct {
    int first;
    int last;
    size_t length;
  } ranges[] = {
      {0x00, 0xBF, 1}, {0xC0, 0xDF, 2}, {0xE0, 0xEF, 3}, {0xF0, 0xF7, 4}, {0xF8, 0xFF, 1}};
  for (const auto& range : ranges) {
    for (int byte = range.first; byte <= range.last; ++byte) {
      SCOPED_TRACE(byte);
      EXPECT_EQ(Utf8Length(static_cast<unsigned char>(byte)), range.length);
    }
  }
}

TEST(Lower, CapitalAGivesSmallAOfLengthOne) {
  EXPECT_EQ(Character("A"), "a");
  EXPECT_EQ(Character("a"), "a");
  EXPECT_EQ(Character("Abc"), "a");
}

TEST(Lower, CapitalEWithAcuteGivesSmallEWithAcute) {
  EXPECT_EQ(Character("\xC3\x89"), "\xC3\xA9");
  EXPECT_EQ(Utf8("\xC3\x89TUD\xC3\x89"), "\xC3\xA9tud\xC3\xA9");
}

TEST(Lower, ALoneContinuationByteGivesItself) {
  EXPECT_EQ(Character("\x80"), "\x80");
  EXPECT_EQ(Character("\xBF"
                      "A"),
            "\xBF");
  EXPECT_EQ(Utf8("\x80"
                 "A"),
            "\x80"
            "a");
}

TEST(Lower, AnEmptyTextGivesNothing) {
  EXPECT_EQ(Character(""), "");
  EXPECT_EQ(Utf8(""), "");
  EXPECT_EQ(SingleByte(""), "");
}

TEST(Lower, CharactersOfManyScripts) {
  const struct {
    const char* what;
    uint32_t input;
    uint32_t expected;
  } cases[] = {
      {"A", 0x41, 0x61},
      {"Z", 0x5A, 0x7A},
      {"commercial at", 0x40, 0x40},
      {"left bracket", 0x5B, 0x5B},
      {"A with grave", 0xC0, 0xE0},
      {"multiplication sign among the letters", 0xD7, 0xD7},
      {"thorn", 0xDE, 0xFE},
      {"sharp s", 0xDF, 0xDF},
      {"y with diaeresis maps downwards", 0x178, 0xFF},
      {"dz with caron, title case", 0x1C5, 0x1C6},
      {"dz with caron, capital", 0x1C4, 0x1C6},
      {"sigma", 0x3A3, 0x3C3},
      {"pi", 0x3A0, 0x3C0},
      {"final sigma", 0x3C2, 0x3C2},
      {"cyrillic zhe", 0x416, 0x436},
      {"cyrillic er", 0x420, 0x440},
      {"cyrillic io", 0x401, 0x451},
      {"armenian ayb", 0x531, 0x561},
      {"georgian an", 0x10A0, 0x2D00},
      {"A with ring below", 0x1E00, 0x1E01},
      {"roman numeral one", 0x2160, 0x2170},
      {"circled A", 0x24B6, 0x24D0},
      {"glagolitic azu", 0x2C00, 0x2C30},
      {"fullwidth A", 0xFF21, 0xFF41},
      {"deseret long i", 0x10400, 0x10428},
      {"han", 0x4E2D, 0x4E2D},
      {"hebrew alef", 0x5D0, 0x5D0},
      {"outside the basic plane without case", 0x1F600, 0x1F600},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Character(Encoded(c.input)), Encoded(c.expected));
    EXPECT_EQ(Utf8("X" + Encoded(c.input) + "Y"), "x" + Encoded(c.expected) + "y");
  }
}

TEST(Lower, FormsOfAnotherLengthAreNoForms) {
  const struct {
    const char* what;
    uint32_t code;
  } cases[] = {
      {"capital sharp s, whose small form has two bytes", 0x1E9E},
      {"kelvin sign, whose small form has one", 0x212A},
      {"ohm sign", 0x2126},
      {"angstrom sign", 0x212B},
      {"A with stroke, whose small form has three", 0x23A},
      {"T with stroke", 0x23E},
      {"L with middle tilde", 0x2C62},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Character(Encoded(c.code)), Encoded(c.code));
    EXPECT_EQ(Utf8(Encoded(c.code) + "A"), Encoded(c.code) + "a");
  }
}

TEST(Lower, CapitalIWithDotLeavesAStrayByte) {
  EXPECT_EQ(Character("\xC4\xB0"), "i");
  EXPECT_EQ(Utf8("\xC4\xB0"), "i\xB0");
  EXPECT_EQ(Utf8("\xC4\xB0STANBUL"), "i\xB0stanbul");
}

TEST(Lower, SmallPiAndSmallErAreLeftAlone) {
  EXPECT_EQ(Utf8("\xCF\x80"), "\xCF\x80");
  EXPECT_EQ(Utf8("\xD1\x80"), "\xD1\x80");
  EXPECT_EQ(Utf8("A\xCF\x80"
                 "B\xD1\x80"
                 "C"),
            "a\xCF\x80"
            "b\xD1\x80"
            "c");
}

TEST(Lower, MalformedTextGivesItself) {
  const struct {
    const char* what;
    std::string_view input;
    std::string_view expected;
  } cases[] = {
      {"a lead of two takes the next byte along",
       "\xC3"
       "AB",
       "\xC3"
       "Ab"},
      {"a lead of three takes two along",
       "\xE4"
       "ABC",
       "\xE4"
       "ABc"},
      {"a lead of four takes three along",
       "\xF0"
       "ABCD",
       "\xF0"
       "ABCd"},
      {"a lead at the end", "A\xC3", "a\xC3"},
      {"a sequence cut at the end", "A\xE1\xB8", "a\xE1\xB8"},
      {"a lead of four before two letters at the end",
       "\xF0"
       "AB",
       "\xF0"
       "AB"},
      {"an overlong A",
       "\xC1\x81"
       "B",
       "\xC1\x81"
       "b"},
      {"an overlong e with acute",
       "\xE0\x83\x89"
       "B",
       "\xE0\x83\x89"
       "b"},
      {"half of a surrogate pair",
       "\xED\xA0\x80"
       "B",
       "\xED\xA0\x80"
       "b"},
      {"above the last character",
       "\xF7\xBF\xBF\xBF"
       "B",
       "\xF7\xBF\xBF\xBF"
       "b"},
      {"0xF8 has length one",
       "\xF8"
       "AB",
       "\xF8"
       "ab"},
      {"0xFF has length one",
       "\xFF"
       "AB",
       "\xFF"
       "ab"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Utf8(std::string(c.input)), c.expected);
  }
}

TEST(Lower, EveryCharacterKeepsItsLengthButOne) {
  int changed = 0;
  for (uint32_t code = 0x80; code <= 0x10FFFF; ++code) {
    const std::string text = Encoded(code);
    const std::string lowered = Character(text);
    if (lowered == text) continue;
    ++changed;
    if (code == 0x130) continue;
    ASSERT_EQ(lowered.size(), text.size()) << std::hex << code;
    ASSERT_EQ(Utf8(lowered), lowered) << "has a lower-case form itself: " << std::hex << code;
  }
  EXPECT_GT(changed, 1000);
}

TEST(Lower, TextModeChoosesTheRoutine) {
  std::string single = "\xC3\x89T";
  LowerText(single.data(), single.size(), false);
  EXPECT_EQ(single, "\xC3\x89t");
  std::string utf8 = "\xC3\x89T";
  LowerText(utf8.data(), utf8.size(), true);
  EXPECT_EQ(utf8, "\xC3\xA9t");
}

TEST(Lower, NothingBehindTheLengthIsTouched) {
  std::string text = "ABC\xC3\x89";
  LowerUtf8(text.data(), 2);
  EXPECT_EQ(text, "abC\xC3\x89");
  text = "AB\xC3\x89";
  LowerUtf8(text.data(), 3);  // the character lies across the end
  EXPECT_EQ(text, "ab\xC3\x89");
  text = "ABC";
  LowerSingleByte(text.data(), 2);
  EXPECT_EQ(text, "abC");
}

}  // namespace
}  // namespace vela
