#include "indexer/write/spelling_writer.h"

#include <gtest/gtest.h>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

constexpr uint64_t kFirstWord = 12;
uint64_t NumberOf(uint64_t place) { return kFirstWord + place; }

TEST(SpellingWriter, ThreeWordsAKeyMostFrequentFirst) {
  const support::ScratchDirectory scratch;
  Vocabulary vocabulary;
  const auto add = [&](const char* text, uint32_t pages) {
    Word& word = vocabulary.words[FindOrAddWord(vocabulary, text)];
    word.pageCount = pages;
    word.isWritten = true;
    return &word;
  };
  // B, E and T behind their vowels: "BT" for the first five.
  add("bat", 5);
  add("bet", 9);
  add("beat", 7);
  add("boot", 8);
  add("knight", 3);  // the K is silent, the GH too: NT
  add("a", 20);      // too short
  add("mp3", 4);     // not made of letters alone
  add("bit", 6)->isWritten = false;
  const std::vector<uint32_t> order = DictionaryOrder(vocabulary);
  // a 20, bet 9, boot 8, beat 7, bit 6, bat 5, mp3 4, knight 3.
  const SpellingSizes sizes = WriteSpelling(scratch.path() / "s", vocabulary, order, kFirstWord);
  const std::string expected = "BT " + std::to_string(NumberOf(1)) + " " +
                               std::to_string(NumberOf(2)) + " " + std::to_string(NumberOf(3)) +
                               "\nNT " + std::to_string(NumberOf(7)) + "\n";
  EXPECT_EQ(ReadFile(scratch.path() / "s"), expected);
  EXPECT_EQ(sizes.entries, 2u);
  EXPECT_EQ(sizes.fileBytes, expected.size());
}

}  // namespace
}  // namespace vela::indexer
