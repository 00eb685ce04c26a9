#include "indexer/collect/similar_pages.h"

#include <gtest/gtest.h>

#include <bit>
#include <string>

namespace vela::indexer {
namespace {

std::string WordsFrom(int first, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "word" + std::to_string(first + i) + " ";
  return text;
}

TEST(SimilarPages, TextsOfFewWordsHaveNoPrint) {
  EXPECT_FALSE(SimilarityPrint(WordsFrom(0, 99)).has_value());
  EXPECT_TRUE(SimilarityPrint(WordsFrom(0, 100)).has_value());
  EXPECT_FALSE(SimilarityPrint("").has_value());
  EXPECT_EQ(SimilarityPrint(WordsFrom(0, 100)), SimilarityPrint("  " + WordsFrom(0, 100)));
}

TEST(SimilarPages, PrintsDifferAsTextsDo) {
  const uint64_t print = SimilarityPrint(WordsFrom(0, 2000)).value_or(0);
  const auto bitsTo = [&](const std::string& text) {
    return std::popcount(print ^ SimilarityPrint(text).value_or(0));
  };
  // One word in two thousand takes three shingles of them.
  EXPECT_LE(bitsTo(WordsFrom(0, 1999) + "other"), kSimilarBits);
  // A third of the text: some bits of 64; another text: half of them.
  EXPECT_GT(bitsTo(WordsFrom(700, 2000)), kSimilarBits);
  EXPECT_GT(bitsTo(WordsFrom(5000, 2000)), 16);
  // The order of words counts.
  EXPECT_GT(bitsTo([] {
              std::string text;
              for (int i = 2000; i-- > 0;) text += "word" + std::to_string(i) + " ";
              return text;
            }()),
            16);
}

TEST(SimilarPages, TheNearestIsFoundByAnyQuarter) {
  SimilarPages pages;
  EXPECT_EQ(pages.SimilarTo(0), std::nullopt);
  constexpr uint64_t kPrint = 0x0123456789ABCDEF;
  pages.Add(kPrint, 5);
  EXPECT_EQ(pages.SimilarTo(kPrint), 5u);
  for (unsigned kept = 0; kept < 4; ++kept) {  // a bit in each quarter but one
    uint64_t print = kPrint;
    for (unsigned quarter = 0; quarter < 4; ++quarter) {
      if (quarter != kept) print ^= uint64_t{1} << (16 * quarter + 7);
    }
    EXPECT_EQ(pages.SimilarTo(print), 5u) << kept;
  }
  EXPECT_EQ(pages.SimilarTo(kPrint ^ 0xF), std::nullopt);  // four bits
  pages.Add(kPrint ^ 0x7, 9);
  EXPECT_EQ(pages.SimilarTo(kPrint ^ 0xF), 9u);
  EXPECT_EQ(pages.SimilarTo(kPrint ^ 0x1), 5u);
  EXPECT_EQ(pages.SimilarTo(kPrint ^ 0x3), 9u);  // nearer, though it came later
  pages.Add(kPrint, 11);
  EXPECT_EQ(pages.SimilarTo(kPrint), 5u);
  EXPECT_EQ(pages.SimilarTo(~kPrint), std::nullopt);
}

TEST(SimilarPages, OfManyThatShareAQuarterTheLastAreLookedAt) {
  SimilarPages pages;
  constexpr uint64_t kPrint = 0xFFFF'FFFF'FFFF'0000;
  pages.Add(kPrint, 0);
  // They share the lowest quarter alone.
  for (uint32_t page = 1; page <= 2000; ++page) pages.Add(uint64_t{page} << 16, page);
  EXPECT_EQ(pages.SimilarTo(kPrint), 0u);  // by the other quarters
  EXPECT_EQ(pages.SimilarTo(uint64_t{2000} << 16), 2000u);
}

}  // namespace
}  // namespace vela::indexer
