// binary_files_test.cc: sizes, places and limits in the binary files of an index.

#include <gtest/gtest.h>

#include "format/little_endian.h"
#include "format/page_info.h"
#include "format/page_text.h"
#include "format/word_map.h"

namespace vela {
namespace {

TEST(LittleEndian, LargestNumberOfAWidth) {
  EXPECT_EQ(LargestNumber(1), 255u);
  EXPECT_EQ(LargestNumber(3), 16777215u);
  EXPECT_EQ(LargestNumber(5), 1099511627775u);
  EXPECT_EQ(LargestNumber(8), UINT64_MAX);
}

TEST(LittleEndian, WidthOfANumber) {
  const struct {
    uint64_t number;
    size_t width;
  } cases[] = {{0, 1}, {255, 1}, {256, 2}, {65535, 2}, {65536, 3}, {UINT64_MAX, 8}};
  for (const auto& c : cases) EXPECT_EQ(WidthOf(c.number), c.width) << c.number;
}

TEST(WordMapFormat, PlacesAndLimits) {
  EXPECT_EQ(kWordMapRecordSize, 10u);
  EXPECT_EQ(kWordMapPageOffset, 2u);
  EXPECT_EQ(kWordMapPositionOffset, 5u);
  EXPECT_EQ(kWordMapScoreLimit, 255u);
  EXPECT_EQ(kPageNumberLimit, 16777215u);
  EXPECT_EQ(kPositionLimit, 1099511627775u);
}

TEST(WordMapFormat, BlocksOfAPage) {
  const struct {
    uint32_t pageWords;
    uint32_t blockWords;
  } cases[] = {{0, 32}, {256, 32}, {257, 33}, {264, 33}, {265, 34}, {UINT32_MAX, 536870912}};
  for (const auto& c : cases) {
    EXPECT_EQ(ProximityBlockWords(c.pageWords), c.blockWords) << c.pageWords;
    // The last word of a page stands in one of the eight blocks.
    if (c.pageWords > 0) {
      EXPECT_LT((c.pageWords - 1) / c.blockWords, kProximityBlocks);
    }
  }
  EXPECT_EQ(ProximityBit(0), 0x80);
  EXPECT_EQ(ProximityBit(7), 0x01);
}

TEST(PageInfoFormat, PlacesInBothLayouts) {
  const struct {
    const PageInfoLayout& layout;
    size_t lengthWidth, dataOffset, fileSize, dateTime, boost, fileType, fixedSize;
    uint64_t longest;
  } cases[] = {{kSmallPageInfo, 2, 2, 7, 11, 15, 16, 17, 65535},
               {kBigPageInfo, 4, 4, 9, 13, 17, 18, 19, 4294967295}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.fixedSize);
    EXPECT_EQ(c.layout.lengthWidth, c.lengthWidth);
    EXPECT_EQ(c.layout.dataOffset, c.dataOffset);
    EXPECT_EQ(c.layout.fileSize, c.fileSize);
    EXPECT_EQ(c.layout.dateTime, c.dateTime);
    EXPECT_EQ(c.layout.boost, c.boost);
    EXPECT_EQ(c.layout.fileType, c.fileType);
    EXPECT_EQ(c.layout.fixedSize, c.fixedSize);
    EXPECT_EQ(c.layout.LengthLimit(), c.longest);
  }
}

TEST(PageInfoFormat, PlaceOfACategory) {
  const struct {
    size_t category, byte;
    int bit;
  } cases[] = {{0, 0, 0}, {7, 0, 7}, {8, 1, 0}, {21, 2, 5}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.category);
    EXPECT_EQ(CategoryByte(c.category), c.byte);
    EXPECT_EQ(CategoryBit(c.category), c.bit);
    EXPECT_EQ(CategorySetBytes(c.category + 1), c.byte + 1);
  }
  EXPECT_EQ(CategorySetBytes(0), 0u);
}

TEST(PageTextFormat, TokenHoldsTheCountOfWords) {
  const struct {
    uint64_t words;
    size_t width;
  } cases[] = {{1, 2}, {255, 2}, {256, 3}, {65535, 3}, {65536, 4}, {16777216, 5}, {4294967295, 5}};
  for (const auto& c : cases) EXPECT_EQ(TokenWidth(c.words), c.width) << c.words;
  EXPECT_GT(TokenWidth(4294967296), kTokenWidthLimit);
}

TEST(PageTextFormat, TheFirstTwoNumbersEndARun) {
  EXPECT_TRUE(EndsRun(kPageEndWord));
  EXPECT_TRUE(EndsRun(kRunEndWord));
  EXPECT_FALSE(EndsRun(kFirstSignWord));
}

}  // namespace
}  // namespace vela
