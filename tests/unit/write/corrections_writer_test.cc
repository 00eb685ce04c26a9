#include "indexer/write/corrections_writer.h"

#include <gtest/gtest.h>

#include "index/corrections.h"
#include "support/corrections_file.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

struct Words {
  support::ScratchDirectory scratch;
  Vocabulary vocabulary;

  Word& Add(const char* text, uint32_t pages) {
    const uint32_t number = FindOrAddWord(vocabulary, text);
    Word& word = vocabulary.words[number];
    word.pageCount = pages;
    word.isWritten = word.isOwnForm = true;
    return word;
  }
  void AddForm(const char* word, const char* surface) {
    FindOrAddVariant(vocabulary, FindOrAddWord(vocabulary, word), surface);
  }
  std::string Written(bool utf8 = true) {
    const std::filesystem::path path = scratch.path() / "c";
    const uint64_t bytes = WriteCorrections(path, vocabulary, DictionaryOrder(vocabulary), utf8);
    const std::string file = ReadFile(path);
    EXPECT_EQ(bytes, file.size());
    return file;
  }
};

TEST(CorrectionsWriter, WordsOfLettersByTheirNumberAndPages) {
  Words words;
  words.Add("scatter", 9);
  words.Add("cot", 2);
  words.Add("cat", 5);
  words.Add("caf\u00E9", 1);
  words.Add("at", 100);                                 // too short
  words.Add("mp3", 100);                                // not of letters alone
  words.Add("e-mail", 100);                             // nor this
  words.Add("\u65E5\u672C\u8A9E", 100);                 // a script without blanks
  words.Add("abcdefghijklmnopqrstuvwxyzabcdefg", 100);  // 33 letters
  words.Add("none", 0);
  EXPECT_EQ(words.Written(),
            support::CorrectionsFile({{"cat", 5}, {"cot", 2}, {"caf\u00E9", 1}, {"scatter", 9}}));
}

TEST(CorrectionsWriter, FormsThatPagesWrite) {
  Words words;
  words.Add("rebas", 8).isOwnForm = false;  // a stem
  words.AddForm("rebas", "Rebase");
  words.AddForm("rebas", "rebase");
  words.AddForm("rebas", "rebasing");
  words.Add("function", 9);
  words.AddForm("function", "Functions");
  Word& folded = words.Add("cafe", 3);  // only finds "café"
  folded.isWritten = folded.isOwnForm = false;
  words.Add("pseudo", 2).isWritten = false;  // a part of "pseudo-type"
  EXPECT_EQ(
      words.Written(),
      support::CorrectionsFile(
          {{"rebase", 8}, {"pseudo", 2}, {"function", 9}, {"rebasing", 8}, {"functions", 9}}));
}

TEST(CorrectionsWriter, BytesAreLettersOfASingleByteSet) {
  Words words;
  words.Add("caf\xE9", 1);
  CorrectionFile file;
  const std::string bytes = words.Written(false);
  file.Open(bytes);
  size_t count = 0;
  file.ForEachNear(4, 4, 0, 32, [&](uint32_t word) {
    WordLetters letters;
    EXPECT_EQ(file.TextOf(word, false, letters), "caf\xE9");
    ++count;
  });
  EXPECT_EQ(count, 1u);
}

TEST(CorrectionsWriter, WordsOnTheMostPagesAreTaken) {
  Words words;
  std::string text = "aaaa";
  for (size_t i = 0; i < kCorrectionWordLimit + 5; ++i) {
    size_t place = text.size() - 1;
    while (text[place] == 'z') text[place--] = 'a';
    ++text[place];
    words.Add(text.c_str(), 2);
  }
  words.Add("rare", 1);
  words.Add("often", 3);
  CorrectionFile file;
  const std::string bytes = words.Written();
  file.Open(bytes);
  ASSERT_TRUE(file.isOpen());
  size_t count = 0;
  uint64_t pages = 0;
  file.ForEachNear(0, kWordLettersLimit, 0, 32, [&](uint32_t word) {
    ++count;
    pages += file.PagesOf(word);
  });
  EXPECT_EQ(count, kCorrectionWordLimit);
  EXPECT_EQ(pages, 2 * kCorrectionWordLimit + 1);
}

}  // namespace
}  // namespace vela::indexer
