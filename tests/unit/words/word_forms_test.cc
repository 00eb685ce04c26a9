#include "indexer/words/word_forms.h"

#include <gtest/gtest.h>

#include "indexer/report/index_error.h"
#include "search/term_search.h"

namespace vela::indexer {
namespace {

constexpr int32_t kDutch = 1, kEnglish = 2, kFrench = 4, kGerman = 5, kHungarian = 6,
                  kRomanian = 11, kRussian = 12, kSpanish = 13, kSwedish = 14, kTurkish = 15;

// What the search makes of a query word.
std::string Searched(std::string_view word, int32_t algorithm) {
  Stemmer stemmer;
  EXPECT_EQ(stemmer.Create(algorithm, true), StemmerStatus::kOk);
  QueryText text;
  Set(text, word);
  StemText(text, stemmer, true);
  return std::string(View(text));
}

TEST(WordForms, TheIndexHoldsWhatAQueryHolds) {
  const struct {
    int32_t algorithm;
    const char* lower;    // as a page's word comes to the dictionary
    const char* another;  // an inflection that a visitor types
  } kCases[] = {
      {kEnglish, "running", "Runs"},
      {kEnglish, "libraries", "library"},
      {kGerman, "b\u00FCcher", "B\u00DCCHERN"},
      {kFrench, "chantait", "chanter"},
      {kSpanish, "libros", "libro"},
      {kDutch, "boeken", "boek"},
      {kSwedish, "b\u00F6ckerna", "b\u00F6cker"},
      {kRussian, "\u043A\u043D\u0438\u0433\u0438", "\u043A\u043D\u0438\u0433\u0443"},
      {kTurkish, "kitaplar", "kitap"},
  };
  const IndexCharset utf8;
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.lower);
    WordForms forms(utf8, c.algorithm);
    EXPECT_EQ(forms.Base(c.lower), Searched(c.lower, c.algorithm));
    EXPECT_EQ(forms.Base(c.lower), Searched(c.another, c.algorithm));
  }
}

TEST(WordForms, NamesAndNumbersAreNotStemmed) {
  const IndexCharset utf8;
  WordForms forms(utf8, kEnglish);
  for (const char* word : {"c++", "e-mails", "mp3s", "node.js", "2026"}) {
    EXPECT_EQ(forms.Base(word), word);
  }
  EXPECT_EQ(forms.Surface("Running"), "Running");
  EXPECT_EQ(WordForms(utf8, -1).Base("running"), "running");
}

TEST(WordForms, OneByteSets) {
  const IndexCharset latin("windows-1252");
  WordForms german(latin, kGerman);
  EXPECT_EQ(german.Base("h\u00E4user"), "haus");  // the stemmer takes the dots off
  WordForms plain(latin, -1);
  EXPECT_EQ(plain.Base("caf\u00E9"), "caf\xE9");
  // Shown, and found by its form without accents.
  EXPECT_EQ(plain.Base("\u0142\u00F3d\u017A"),
            "&#322;\xF3"
            "d&#378;");
  EXPECT_EQ(plain.Surface("\u0141\u00F3d\u017A"),
            "&#321;\xF3"
            "d&#378;");
  EXPECT_EQ(plain.FoundBase("lodz"), "lodz");
  EXPECT_EQ(plain.FoundBase("\u0142"), "");
  std::string many;
  for (int i = 0; i < 40; ++i) many += "\u0416";
  EXPECT_EQ(plain.Base(many), "");  // 40 references of 7 bytes
}

TEST(WordForms, AStemmerMustFitTheSet) {
  const struct {
    const char* charset;
    int32_t algorithm;
    bool fits;
  } kCases[] = {
      {"windows-1252", kGerman, true}, {"iso-8859-1", kFrench, true},
      {"iso-8859-2", kRomanian, true}, {"iso-8859-2", kHungarian, true},
      {"koi8-r", kRussian, true},      {"windows-1251", kRussian, false},
      {"iso-8859-9", kTurkish, false}, {"iso-8859-2", kGerman, false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.charset);
    const IndexCharset charset(c.charset);
    if (c.fits) {
      EXPECT_NO_THROW(WordForms(charset, c.algorithm));
    } else {
      EXPECT_THROW(WordForms(charset, c.algorithm), IndexError);
    }
  }
}

}  // namespace
}  // namespace vela::indexer
