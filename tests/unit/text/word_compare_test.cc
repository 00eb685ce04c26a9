// word_compare_test.cc: comparison of words in every mode.

#include "text/word_compare.h"

#include <gtest/gtest.h>

#include <string_view>

namespace vela {
namespace {

constexpr TextMode kExact = {false, false};
constexpr TextMode kExactUtf8 = {false, true};
constexpr TextMode kFold = {true, false};
constexpr TextMode kFoldUtf8 = {true, true};

int Sign(int value) { return (value > 0) - (value < 0); }

TEST(WordCompare, AppleDiffersWithoutFolding) {
  for (const TextMode mode : {kExact, kExactUtf8}) {
    SCOPED_TRACE(mode.utf8);
    EXPECT_LT(WordCompare(mode, "Apple", "apple"), 0);
    EXPECT_GT(WordCompare(mode, "apple", "Apple"), 0);
    EXPECT_NE(WordCompareN(mode, "Apple", "apple", 3), 0);
    EXPECT_NE(WordCompareLowered(mode, "apple", "Apple"), 0);
  }
}

TEST(WordCompare, AppleIsEqualWithFolding) {
  for (const TextMode mode : {kFold, kFoldUtf8}) {
    SCOPED_TRACE(mode.utf8);
    EXPECT_EQ(WordCompare(mode, "Apple", "apple"), 0);
    EXPECT_EQ(WordCompareN(mode, "Apple", "aPPle", 3), 0);
    EXPECT_EQ(WordCompareLowered(mode, "apple", "Apple"), 0);
  }
}

TEST(WordCompare, OrdersByBytes) {
  const struct {
    const char* what;
    std::string_view a;
    std::string_view b;
    int expected;
  } cases[] = {
      {"equal", "cat", "cat", 0},
      {"both empty", "", "", 0},
      {"empty comes first", "", "a", -1},
      {"a beginning comes first", "car", "cart", -1},
      {"the longer one comes later", "cart", "car", 1},
      {"the first difference decides", "cat", "cub", -1},
      {"bytes from 0x80 up come after the letters", "\xC3\xA9", "z", 1},
      {"digits before letters", "1", "a", -1},
  };
  for (const TextMode mode : {kExact, kExactUtf8, kFold, kFoldUtf8}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(c.what);
      EXPECT_EQ(Sign(WordCompare(mode, c.a, c.b)), c.expected);
      EXPECT_EQ(Sign(WordCompare(mode, c.b, c.a)), -c.expected);
      EXPECT_EQ(Sign(WordCompareLowered(mode, c.a, c.b)), c.expected);
      EXPECT_EQ(Sign(WordCompareN(mode, c.a, c.b, 100)), c.expected);
    }
  }
}

TEST(WordCompare, FoldingDecidesTheOrder) {
  EXPECT_LT(WordCompare(kExact, "Z", "a"), 0);
  EXPECT_GT(WordCompare(kFold, "Z", "a"), 0);
  EXPECT_GT(WordCompare(kFold, "a", "_"), 0);
  EXPECT_GT(WordCompare(kFold, "A", "_"), 0);  // as the small letter, behind the underscore
}

TEST(WordCompare, AccentsFoldInUtf8Only) {
  EXPECT_EQ(WordCompare(kFoldUtf8, "\xC3\x89t\xC3\xA9", "\xC3\xA9T\xC3\x89"), 0);
  EXPECT_NE(WordCompare(kFold, "\xC3\x89t", "\xC3\xA9t"), 0);
  EXPECT_NE(WordCompare(kExactUtf8, "\xC3\x89t", "\xC3\xA9t"), 0);
  EXPECT_NE(WordCompare(kFold, "\xC9t", "\xE9t"), 0);
}

TEST(WordCompare, CapitalIWithDotComparesWithItsStrayByte) {
  EXPECT_EQ(WordCompare(kFoldUtf8, "\xC4\xB0X", "i\xB0x"), 0);
  EXPECT_NE(WordCompare(kFoldUtf8, "\xC4\xB0", "i"), 0);
}

TEST(WordCompare, TheFirstBytesOnly) {
  const struct {
    const char* what;
    TextMode mode;
    std::string_view a;
    std::string_view b;
    size_t length;
    int expected;
  } cases[] = {
      {"no bytes are equal", kExact, "a", "b", 0, 0},
      {"equal beginnings", kExact, "cart", "carp", 3, 0},
      {"a difference inside", kExact, "cart", "carp", 4, 1},
      {"a word that ends before", kExact, "ca", "cart", 3, -1},
      {"both end before", kExact, "ca", "ca", 30, 0},
      {"folded", kFold, "CARt", "carp", 3, 0},
      {"folded in UTF-8", kFoldUtf8, "\xC3\x89x", "\xC3\xA9y", 2, 0},
      {"a character that is cut is not folded", kFoldUtf8, "\xC3\x89", "\xC3\xA9", 1, 0},
      {"single-byte accents stay", kFold, "\xC9", "\xE9", 1, -1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Sign(WordCompareN(c.mode, c.a, c.b, c.length)), c.expected);
  }
}

TEST(WordCompare, OnlyTheSecondWordIsFolded) {
  for (const TextMode mode : {kFold, kFoldUtf8}) {
    SCOPED_TRACE(mode.utf8);
    EXPECT_EQ(WordCompareLowered(mode, "cat", "CAT"), 0);
    EXPECT_LT(WordCompareLowered(mode, "CAT", "cat"), 0);
    EXPECT_LT(WordCompareLowered(mode, "CAT", "CAT"), 0);
  }
  EXPECT_EQ(WordCompareLowered(kFoldUtf8, "\xC3\xA9", "\xC3\x89"), 0);
  EXPECT_NE(WordCompareLowered(kFoldUtf8, "\xC3\x89", "\xC3\x89"), 0);
  EXPECT_EQ(WordCompareLowered(kExact, "CAT", "CAT"), 0);
}

}  // namespace
}  // namespace vela
