#include "indexer/collect/title_mass.h"

#include <gtest/gtest.h>

#include "format/word_weight.h"

namespace vela::indexer {
namespace {

struct Titles {
  IndexCharset utf8;
  WordForms forms = WordForms(utf8, -1);
  Vocabulary vocabulary;

  uint32_t Number(std::string_view word) { return FindOrAddWord(vocabulary, word); }
  static Posting On(uint32_t page, uint32_t word, uint8_t zones) {
    Posting posting;
    posting.page = page;
    posting.word = word;
    posting.zones = zones;
    return posting;
  }
};

constexpr uint8_t kPlainWord = kInTitle | kTitleWord | kTitlePart;
constexpr uint8_t kJoinedWord = kInTitle | kTitleWord;
constexpr uint8_t kPartOfWord = kInTitle | kTitlePart;

TEST(TitleMasses, AddUpForEachPage) {
  Titles site;
  const uint32_t word = site.Number("word");
  TitleMasses titles(3, "", site.vocabulary, site.forms);
  titles.Add(Titles::On(0, word, kPlainWord), 30);
  titles.Add(Titles::On(0, word, kPlainWord), 12);
  titles.Add(Titles::On(1, word, kInMainHeading), 30);
  titles.Add(Titles::On(2, word, kPlainWord), kTitleMassLimit);
  titles.Add(Titles::On(2, word, kPlainWord), 1);
  EXPECT_EQ(titles.Of(0), 42u);
  EXPECT_EQ(titles.Of(1), 0u);
  EXPECT_EQ(titles.Of(2), kTitleMassLimit);
}

TEST(TitleMasses, AJoinedWordOrItsPartsWhatSaysLess) {
  Titles site;
  const uint32_t word = site.Number("word");
  TitleMasses titles(2, "", site.vocabulary, site.forms);
  // "git-merge": the parts say less, as every page has "git".
  titles.Add(Titles::On(0, word, kJoinedWord), 100);
  titles.Add(Titles::On(0, word, kPartOfWord), 1);
  titles.Add(Titles::On(0, word, kPartOfWord), 60);
  // "3.11": the whole says less, as every page has it.
  titles.Add(Titles::On(1, word, kJoinedWord), 1);
  titles.Add(Titles::On(1, word, kPartOfWord), 40);
  titles.Add(Titles::On(1, word, kPartOfWord), 40);
  EXPECT_EQ(titles.Of(0), 61u);
  EXPECT_EQ(titles.Of(1), 1u);
}

TEST(TitleMasses, StopWordsSayNothingBesideOthers) {
  Titles site;
  const uint32_t the = site.Number("the");
  const uint32_t who = site.Number("who");
  const uint32_t word = site.Number("word");
  TitleMasses titles(2, "the who", site.vocabulary, site.forms);
  titles.Add(Titles::On(0, the, kPlainWord), 20);
  titles.Add(Titles::On(0, word, kPlainWord), 50);
  titles.Add(Titles::On(1, the, kPlainWord), 20);
  titles.Add(Titles::On(1, who, kPlainWord), 25);
  EXPECT_EQ(titles.Of(0), 50u);
  EXPECT_EQ(titles.Of(1), 45u);
}

}  // namespace
}  // namespace vela::indexer
