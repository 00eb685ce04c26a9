#include "text/stemmer.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vela {
namespace {

using Word = FixedText<2086>;

constexpr int32_t kEnglish = 2;
constexpr int32_t kHungarian = 6;
constexpr int32_t kPorter = 9;
constexpr int32_t kRomanian = 11;
constexpr int32_t kRussian = 12;
constexpr int32_t kTurkish = 15;

std::string Stemmed(Stemmer& stemmer, std::string_view text) {
  Word word;
  Set(word, text);
  EXPECT_TRUE(stemmer.StemWord(word));
  return std::string(View(word));
}

TEST(Stemmer, AlgorithmNames) {
  const char* const names[] = {"danish",    "dutch",   "english",    "finnish",
                               "french",    "german",  "hungarian",  "italian",
                               "norwegian", "porter",  "portuguese", "romanian",
                               "russian",   "spanish", "swedish",    "turkish"};
  static_assert(std::size(names) == kStemmingAlgorithmCount);
  for (int32_t i = 0; i < kStemmingAlgorithmCount; ++i) {
    EXPECT_STREQ(StemmingAlgorithmName(i), names[i]);
  }
}

TEST(Stemmer, EveryAlgorithmInUtf8) {
  const struct {
    int32_t algorithm;
    const char* word;
    const char* stem;
  } cases[] = {
      {0, "hundene", "hund"},
      {1, "boeken", "boek"},
      {2, "running", "run"},
      {3, "talossa", "talo"},
      {4, "chats", "chat"},
      {5, "katzen", "katz"},
      {6, "h\u00E1zban", "h\u00E1z"},
      {7, "abbandonata", "abbandon"},
      {8, "hundene", "hund"},
      {9, "relational", "relat"},
      {10, "boatos", "boat"},
      {11, "cas\u0103", "cas"},
      {12, "\u043A\u043D\u0438\u0433\u0438", "\u043A\u043D\u0438\u0433"},
      {13, "gatos", "gat"},
      {14, "hundarna", "hund"},
      {15, "kitaplar", "kitap"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(StemmingAlgorithmName(c.algorithm));
    Stemmer stemmer;
    ASSERT_EQ(stemmer.Create(c.algorithm, true), StemmerStatus::kOk);
    EXPECT_EQ(Stemmed(stemmer, c.word), c.stem);
  }
}

TEST(Stemmer, EveryAlgorithmInSingleBytes) {
  const struct {
    int32_t algorithm;
    const char* what;
    const char* word;
    const char* stem;
  } cases[] = {
      {0, "danish", "hundene", "hund"},
      {1, "dutch", "boeken", "boek"},
      {2, "english", "running", "run"},
      {3, "finnish", "talossa", "talo"},
      {4, "french", "chats", "chat"},
      {5, "german", "katzen", "katz"},
      {7, "italian", "abbandonata", "abbandon"},
      {8, "norwegian", "hundene", "hund"},
      {9, "porter", "relational", "relat"},
      {10, "portuguese", "boatos", "boat"},
      {11, "romanian without accents", "casele", "cas"},
      {13, "spanish", "gatos", "gat"},
      {14, "swedish", "hundarna", "hund"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Stemmer stemmer;
    ASSERT_EQ(stemmer.Create(c.algorithm, false), StemmerStatus::kOk);
    EXPECT_EQ(Stemmed(stemmer, c.word), c.stem);
  }
}

// Each word has a letter outside ASCII on which its stem depends, so that a stemmer for another
// encoding would give another one.
TEST(Stemmer, LettersOutsideAsciiInBothEncodings) {
  const struct {
    int32_t algorithm;
    const char* utf8;
    const char* utf8Stem;
    const char* singleByte;  // null: there is no such encoding
    const char* singleByteStem;
  } cases[] = {
      {0, "b\u00F8gerne", "b\u00F8g", "b\xF8gerne", "b\xF8g"},
      {1, "caf\u00E9", "caf", "caf\xE9", "caf"},
      {3, "kyl\u00E4ss\u00E4", "kyl\u00E4", "kyl\xE4ss\xE4", "kyl\xE4"},
      {4, "aim\u00E9es", "aim",
       "aim\xE9"
       "es",
       "aim"},
      {5, "h\u00E4user", "haus", "h\xE4user", "haus"},
      {6, "h\u00E1zban", "h\u00E1z", "h\xE1zban", "h\xE1z"},
      {7, "citt\u00E0", "citt", "citt\xE0", "citt"},
      {8, "b\u00F8kene", "b\u00F8k", "b\xF8kene", "b\xF8k"},
      {10, "caf\u00E9", "caf", "caf\xE9", "caf"},
      {11, "cas\u0103", "cas", "cas\xE3", "cas"},
      {12, "\u043A\u043D\u0438\u0433\u0438", "\u043A\u043D\u0438\u0433", "\xCB\xCE\xC9\xC7\xC9",
       "\xCB\xCE\xC9\xC7"},
      {13, "caf\u00E9", "caf", "caf\xE9", "caf"},
      {14, "g\u00E4ster", "g\u00E4st", "g\xE4ster", "g\xE4st"},
      {15, "g\u00F6zler", "g\u00F6z", nullptr, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(StemmingAlgorithmName(c.algorithm));
    Stemmer stemmer;
    ASSERT_EQ(stemmer.Create(c.algorithm, true), StemmerStatus::kOk);
    EXPECT_EQ(Stemmed(stemmer, c.utf8), c.utf8Stem);
    if (c.singleByte == nullptr) continue;
    ASSERT_EQ(stemmer.Create(c.algorithm, false), StemmerStatus::kOk);
    EXPECT_EQ(Stemmed(stemmer, c.singleByte), c.singleByteStem);
  }
}

TEST(Stemmer, RussianWithoutUtf8StemsKoi8) {
  Stemmer stemmer;
  ASSERT_EQ(stemmer.Create(kRussian, false), StemmerStatus::kOk);
  EXPECT_EQ(Stemmed(stemmer, "\xCB\xCE\xC9\xC7\xC9"), "\xCB\xCE\xC9\xC7");
}

TEST(Stemmer, RomanianWithoutUtf8StemsIso8859Part2) {
  // The last letter, "a" with a breve, is 0xE3 there.
  Stemmer stemmer;
  ASSERT_EQ(stemmer.Create(kRomanian, false), StemmerStatus::kOk);
  EXPECT_EQ(Stemmed(stemmer, "cas\xE3"), "cas");
}

TEST(Stemmer, HungarianWithoutUtf8HasASecondTry) {
  // 0xE1 is "a" with an acute in both sets. Were it no vowel, "ban" would not be taken off.
  Stemmer stemmer;
  ASSERT_EQ(stemmer.Create(kHungarian, false), StemmerStatus::kOk);
  EXPECT_EQ(Stemmed(stemmer, "h\xE1zban"), "h\xE1z");
  EXPECT_EQ(Stemmed(stemmer, "kertben"), "kert");
}

TEST(Stemmer, TurkishNeedsUtf8) {
  Stemmer stemmer;
  EXPECT_EQ(stemmer.Create(kTurkish, false), StemmerStatus::kUnavailable);
  EXPECT_EQ(stemmer.Create(kTurkish, true), StemmerStatus::kOk);
  EXPECT_EQ(stemmer.Create(kTurkish, false), StemmerStatus::kUnavailable);
}

TEST(Stemmer, InvalidAlgorithms) {
  for (int32_t algorithm : {16, -1, 17, INT32_MAX, INT32_MIN}) {
    SCOPED_TRACE(algorithm);
    Stemmer stemmer;
    EXPECT_EQ(stemmer.Create(algorithm, false), StemmerStatus::kInvalidAlgorithm);
    EXPECT_EQ(stemmer.Create(algorithm, true), StemmerStatus::kInvalidAlgorithm);
  }
}

TEST(Stemmer, CanBeCreatedAndReleasedAgain) {
  Stemmer stemmer;
  stemmer.Release();
  ASSERT_EQ(stemmer.Create(kEnglish, true), StemmerStatus::kOk);
  ASSERT_EQ(stemmer.Create(5, true), StemmerStatus::kOk);
  EXPECT_EQ(Stemmed(stemmer, "katzen"), "katz");
  stemmer.Release();
  stemmer.Release();
  ASSERT_EQ(stemmer.Create(kEnglish, false), StemmerStatus::kOk);
  EXPECT_EQ(Stemmed(stemmer, "running"), "run");
}

struct EnglishStemmer : testing::Test {
  Stemmer stemmer;
  void SetUp() override { ASSERT_EQ(stemmer.Create(kEnglish, false), StemmerStatus::kOk); }
};

TEST_F(EnglishStemmer, WordsNeverStemmed) {
  for (const char* text : {"c++", "don't", "mp3", "e-mail", "mp3s", "running.", "4runners"}) {
    SCOPED_TRACE(text);
    Word word;
    Set(word, text);
    EXPECT_FALSE(stemmer.StemWord(word));
    EXPECT_EQ(View(word), text);
  }
}

TEST_F(EnglishStemmer, EachCharacterThatKeepsAWordAsItIs) {
  constexpr std::string_view kCharacters = "`0123456789-=[]\\;',./~!@#$%^&*_+|:\"<>?";
  ASSERT_EQ(kCharacters.size(), 38u);
  for (char c : kCharacters) {
    SCOPED_TRACE(c);
    for (const std::string& text : {c + std::string("running"), std::string("run") + c + "ning",
                                    std::string("running") + c, std::string(1, c)}) {
      Word word;
      Set(word, text);
      EXPECT_FALSE(stemmer.StemWord(word));
      EXPECT_EQ(View(word), text);
    }
  }
}

TEST_F(EnglishStemmer, OtherPunctuationDoesNotKeepAWord) {
  EXPECT_EQ(Stemmed(stemmer, "(running"), "(run");
  EXPECT_EQ(Stemmed(stemmer, "{running"), "{run");
}

TEST_F(EnglishStemmer, StemmingTwiceUsesNothingOfTheFirstWord) {
  EXPECT_EQ(Stemmed(stemmer, "running"), "run");
  EXPECT_EQ(Stemmed(stemmer, "cats"), "cat");
  EXPECT_EQ(Stemmed(stemmer, "cat"), "cat");  // its own stem
}

TEST_F(EnglishStemmer, EmptyWordIsKept) {
  Word word;
  EXPECT_FALSE(stemmer.StemWord(word));
  EXPECT_EQ(View(word), "");
}

TEST(Stemmer, WordWithAnEmptyStemIsKept) {
  // The older English algorithm takes a final "s" off whatever stands before it.
  Stemmer stemmer;
  ASSERT_EQ(stemmer.Create(kPorter, false), StemmerStatus::kOk);
  Word word;
  Set(word, "s");
  EXPECT_FALSE(stemmer.StemWord(word));
  EXPECT_EQ(View(word), "s");
}

TEST_F(EnglishStemmer, LongestStemIs2084Bytes) {
  const struct {
    const char* what;
    size_t length;
    bool isStemmed;
  } cases[] = {{"one below", 2083, true}, {"full", 2084, true}, {"one over", 2085, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string text(c.length, 'a');
    Word word;
    Set(word, text);
    EXPECT_EQ(stemmer.StemWord(word), c.isStemmed);
    EXPECT_EQ(View(word), text);
  }
}

TEST_F(EnglishStemmer, LongestWordWithAShorterStem) {
  // 2085 bytes, whose plural "s" goes.
  const std::string stem = std::string(2083, 'a') + "t";
  EXPECT_EQ(Stemmed(stemmer, stem + "s"), stem);
}

}  // namespace
}  // namespace vela
