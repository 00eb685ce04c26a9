#include "indexer/collect/vocabulary.h"

#include <gtest/gtest.h>

#include <string>

namespace vela::indexer {
namespace {

TEST(Vocabulary, NumbersWordsByFirstAppearance) {
  Vocabulary vocabulary;
  EXPECT_EQ(FindOrAddWord(vocabulary, "cat"), 0u);
  EXPECT_EQ(FindOrAddWord(vocabulary, "a"), 1u);
  EXPECT_EQ(FindOrAddWord(vocabulary, "cat"), 0u);
  EXPECT_EQ(FindOrAddWord(vocabulary, ""), 2u);
  EXPECT_EQ(TextOf(vocabulary.words[1], vocabulary), "a");
}

TEST(Vocabulary, GrowsAndFindsEverythingAgain) {
  Vocabulary vocabulary;
  constexpr uint32_t kWords = 100000;
  for (uint32_t i = 0; i < kWords; ++i) {
    ASSERT_EQ(FindOrAddWord(vocabulary, "word" + std::to_string(i)), i);
  }
  for (uint32_t i = 0; i < kWords; i += 7) {
    ASSERT_EQ(FindOrAddWord(vocabulary, "word" + std::to_string(i)), i);
  }
  EXPECT_GT(MemoryOf(vocabulary), kWords * sizeof(Word));
}

TEST(Vocabulary, VariantsStandInOrderOfFirstAppearance) {
  Vocabulary vocabulary;
  const uint32_t word = FindOrAddWord(vocabulary, "cat");
  EXPECT_EQ(FindOrAddVariant(vocabulary, word, "cat"), 0);
  EXPECT_EQ(FindOrAddVariant(vocabulary, word, "CAT"), 1);
  EXPECT_EQ(FindOrAddVariant(vocabulary, word, "Cat"), 2);
  EXPECT_EQ(FindOrAddVariant(vocabulary, word, "CAT"), 1);
  EXPECT_EQ(vocabulary.words[word].variantCount, 2);
}

TEST(Vocabulary, KeepsNoMoreVariantsThanATokenCanName) {
  Vocabulary vocabulary;
  const uint32_t word = FindOrAddWord(vocabulary, "word");
  for (int i = 1; i <= 255; ++i) {
    ASSERT_EQ(FindOrAddVariant(vocabulary, word, "V" + std::to_string(i)), i);
  }
  EXPECT_EQ(FindOrAddVariant(vocabulary, word, "one more"), 0);
  EXPECT_EQ(FindOrAddVariant(vocabulary, word, "V255"), 255);
  EXPECT_EQ(vocabulary.words[word].variantCount, 255);
}

TEST(Vocabulary, KeepsNoLongVariant) {
  Vocabulary vocabulary;
  const uint32_t word = FindOrAddWord(vocabulary, "word");
  EXPECT_EQ(FindOrAddVariant(vocabulary, word, std::string(127, 'V')), 0);
  EXPECT_EQ(FindOrAddVariant(vocabulary, word, std::string(126, 'V')), 1);
}

TEST(Vocabulary, OrdersByPagesThenBytes) {
  Vocabulary vocabulary;
  for (const char* text : {"b", "rare", "a", "common", "\xC3\xA9"}) FindOrAddWord(vocabulary, text);
  const uint32_t pages[] = {2, 1, 2, 9, 2};
  for (size_t i = 0; i < 5; ++i) vocabulary.words[i].pageCount = pages[i];
  EXPECT_EQ(DictionaryOrder(vocabulary), (std::vector<uint32_t>{3, 2, 0, 4, 1}));
}

}  // namespace
}  // namespace vela::indexer
