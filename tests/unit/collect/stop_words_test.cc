#include "indexer/collect/stop_words.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "indexer/config/embedded_files.h"
#include "indexer/config/language_file.h"
#include "settings/setting_keys.h"
#include "text/stemmer.h"

namespace vela::indexer {
namespace {

constexpr uint64_t kPages = 100;

// The words of a language's list.
std::vector<std::string> WordsOf(std::string_view language) {
  const EmbeddedFile* file = FindEmbeddedFile(std::string(language) + ".txt");
  std::vector<std::string> words;
  if (file == nullptr) return words;
  std::string_view rest = file->content;
  while (!rest.empty()) {
    const size_t end = std::min(rest.find_first_of(" \n"), rest.size());
    if (end > 0) words.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return words;
}

struct Site {
  IndexCharset charset;
  WordForms forms = WordForms(charset, -1);
  Vocabulary vocabulary;

  explicit Site(const std::string& set = "utf-8", int32_t stemming = -1)
      : charset(set), forms(charset, stemming) {}

  void Add(std::string_view word, uint32_t pages) {
    const std::string base(forms.FoundBase(word));
    if (base.empty()) return;
    Word& entry = vocabulary.words[FindOrAddWord(vocabulary, base)];
    entry.pageCount = std::max(entry.pageCount, pages);
  }
  void AddLanguage(std::string_view language, uint32_t pages) {
    for (const std::string& word : WordsOf(language)) Add(word, pages);
  }
  std::string StopWords() { return " " + StopWordsOf(vocabulary, kPages, forms) + " "; }
};

bool Has(const std::string& text, const std::string& word) {
  return text.find(" " + word + " ") != text.npos;
}

TEST(StopWordsOf, AreThoseOfTheLanguageOfThePages) {
  for (const std::string_view language : BuiltInLanguages()) {
    SCOPED_TRACE(language);
    // Their function words are parts of the runs that they are written in (CutRuns).
    if (language == "japanese" || language == "chinese") continue;
    const std::vector<std::string> words = WordsOf(language);
    ASSERT_GT(words.size(), 80u);
    Site site;
    site.AddLanguage(language, 60);
    std::string expected;
    for (const std::string& word : words) expected += " " + word;
    EXPECT_EQ(site.StopWords(), expected + " ");
  }
}

TEST(StopWordsOf, SingleWordsOfAnotherLanguageAreNames) {
  Site site;
  site.AddLanguage("english", 60);
  for (const char* word : {"bin", "man", "den", "war", "die", "hat", "mit"}) site.Add(word, 50);
  const std::string words = site.StopWords();
  EXPECT_TRUE(Has(words, "the"));
  EXPECT_FALSE(Has(words, "die"));
}

TEST(StopWordsOf, OfAFewPagesInAnotherLanguageAreNone) {
  Site site;
  site.AddLanguage("english", 90);
  site.AddLanguage("german", 3);
  EXPECT_FALSE(Has(site.StopWords(), "der"));
}

TEST(StopWordsOf, LanguagesAreJoinedWithTheCommonestFirst) {
  Site site;
  site.AddLanguage("english", 30);
  site.AddLanguage("german", 70);
  const std::string words = site.StopWords();
  EXPECT_LT(words.find(" der "), words.find(" the "));
  size_t count = 0;  // "in" is in both lists
  for (size_t at = words.find(" in "); at != words.npos; at = words.find(" in ", at + 1)) ++count;
  EXPECT_EQ(count, 1u);
}

TEST(StopWordsOf, AllLanguagesTogetherFitIntoTheSetting) {
  Site site;
  for (const std::string_view language : BuiltInLanguages()) site.AddLanguage(language, 50);
  const std::string words = StopWordsOf(site.vocabulary, kPages, site.forms);
  EXPECT_GT(words.size(), 1000u);
  EXPECT_LE(words.size(), FindTextSetting("StopWords")->capacity);
}

TEST(StopWordsOf, AreFoundByTheirStems) {
  Site site("utf-8", kStemEnglish);
  site.AddLanguage("english", 60);
  EXPECT_TRUE(Has(site.StopWords(), "having"));
}

TEST(StopWordsOf, WordsThatTheCharacterSetLacksAreLeftOut) {
  Site site("iso-8859-1");
  site.AddLanguage("polish", 60);
  const std::string words = site.StopWords();
  EXPECT_TRUE(Has(words, "jest"));
  EXPECT_FALSE(Has(words, "tę"));
}

TEST(StopWordsOf, ASiteInNoKnownLanguageHasNone) {
  Site site;
  site.Add("kissa", 90);
  EXPECT_EQ(site.StopWords(), "  ");
}

}  // namespace
}  // namespace vela::indexer
