#include "search/corrections.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "search/stop_words.h"
#include "support/corrections_file.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::LoadedSite;
using support::MeantWord;
using support::NewPage;
using support::Occurrence;

constexpr uint32_t kPages = 40;

// A site of 40 pages, each word on the first `pages` of them, but `late` on the last.
struct Site {
  LoadedSite site;
  Stemmer stemmer;
  Query query;
  Matches matches;

  Site(const std::vector<MeantWord>& words, const std::string& file, std::string_view late = "")
      : site(Builder(words, late)) {
    site.settings.Spelling = site.settings.SpellingDistance = 1;
    site.settings.SpellingWhenLessThan = 1;
    site.settings.AllowExactPhrase = 1;
    EXPECT_EQ(stemmer.Create(2, false), StemmerStatus::kOk);
    std::ofstream(site.scratch.path() / kCorrectionsFileName, std::ios::binary) << file;
    EXPECT_TRUE(AllocateMatches(matches, static_cast<int32_t>(kPages)));
  }
  explicit Site(const std::vector<MeantWord>& words)
      : Site(words, support::CorrectionsFile(words)) {}

  static IndexBuilder Builder(const std::vector<MeantWord>& words, std::string_view late) {
    IndexBuilder builder;
    builder.Set("DictIDLen", "4").Set("DictReservedLimit", "1").Set("UseUTF8", "1");
    for (uint32_t i = 0; i < kPages; ++i) builder.Page(NewPage("p" + std::to_string(i) + ".html"));
    builder.Word("r0").Word("r1");
    for (const MeantWord& word : words) {
      std::vector<Occurrence> occurrences;
      for (uint32_t page = 0; page < word.pages; ++page) {
        const uint32_t first = word.text == late ? kPages - word.pages : 0;
        occurrences.push_back({.page = first + page, .score = 10});
      }
      builder.Word(word.text, occurrences);
    }
    return builder;
  }
  Corrections Make(std::string_view typed) {
    TermSearch search;
    Set(query.typed, typed);
    EXPECT_TRUE(ParseQuery(query, site.settings));
    EXPECT_TRUE(DropStopWords(query.terms, View(query.text), site.settings, query.dropped));
    EXPECT_TRUE(StartTermSearch(search, query.terms, site.settings));
    search.dropped = {query.dropped.data(), query.dropped.size()};
    for (SearchedTerm& term : search.terms) {
      const int32_t number = site.dictionary.FindExact(View(term.word), 2);
      if (number < 0) continue;
      WordList list;
      EXPECT_EQ(
          FindWordList(site.files.wordMap.bytes(), site.dictionary.EntryAt(number).offset, list)
              .status,
          TermStatus::kOk);
      term.records = list.size();
    }
    return MakeCorrections(search, {.settings = site.settings,
                                    .directory = site.directory,
                                    .dictionary = site.dictionary,
                                    .wordMap = site.files.wordMap.bytes(),
                                    .matches = matches,
                                    .stemmer = stemmer});
  }
  // "function or junction!": the offers; "!" behind what is certain.
  std::string For(std::string_view typed) {
    const Corrections made = Make(typed);
    std::string text;
    for (int32_t i = 0; i < made.offers.count; ++i) {
      text += (i > 0 ? " or " : "") + std::string(View(made.offers.texts[i]));
    }
    return text + (made.isCertain ? "!" : "");
  }
};

std::vector<MeantWord> Words() {
  return {{"cat", 20},     {"cot", 20},       {"cut", 1},         {"lambda", 9},
          {"library", 30}, {"function", 40},  {"junction", 2},    {"integer", 15},
          {"install", 15}, {"exception", 15}, {"dictionary", 12}, {"environment", 8}};
}

TEST(Corrections, QueriesTable) {
  const struct {
    const char* what;
    const char* typed;
    const char* expected;
  } cases[] = {
      {"a letter left out", "dictonary", "dictionary!"},
      {"two neighbours swapped", "fucntion", "function!"},
      {"a letter left out in the middle", "funtion", "function!"},
      {"one of the two r", "libary", "library!"},
      {"two letters left out of a long word", "enviroment", "environment!"},
      {"a letter too many", "interger", "integer!"},
      {"a letter less", "exeption", "exception!"},
      {"swapped in a short word", "intsall", "install!"},
      {"no word that sounds alike but is further off", "lamda", "lambda!"},
      {"two slips in a long word", "fucntoin", "function!"},
      {"not in one of seven letters", "fcntoin", ""},
      {"three slips", "fncutoin", ""},
      {"a word that is found", "function", ""},
      {"a rare word that is found", "junction", ""},
      {"a word like none", "zebra", ""},
      {"capitals are no slips", "FUCNTION", "function!"},
      {"short, with two words as near", "cht", ""},
      {"of few letters none is certain", "cta", "cat"},
      {"two letters", "ct", ""},
      {"a first letter that is wrong is not certain", "cunction", "function"},
      {"nor is a letter more that no finger slips to", "functionz", "function"},
      {"letters and digits", "f9nction", ""},
      {"a pattern", "fucntion*", ""},
      {"a restriction of addresses", "site:fucntion", ""},
      {"an exclusion stays", "fucntion -libary", "function -libary!"},
      {"an excluded phrase, too", "fucntion -\"libary cat\"", "function -\"libary cat\"!"},
      {"words that are found stay", "libary function", "library function!"},
      {"words without a correction stay and make it uncertain", "libary zebra", "library zebra"},
      {"two words", "libary fucntion", "library function!"},
      {"the words of a phrase", "\"libary function\" cat", "\"library function\" cat!"},
      {"a phrase of known words", "\"library function\"", ""},
      {"nothing", "\"\"", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Site(Words()).For(c.typed), c.expected);
  }
}

TEST(Corrections, OfTwoWordsThatAreAsLikelyTheLonger) {
  // A letter left out and a vowel for another are as likely.
  EXPECT_EQ(Site({{"taken", 9}, {"taking", 9}}).For("takin"), "taking or taken");
  EXPECT_EQ(Site({{"taken", 20}, {"taking", 9}}).For("takin"), "taken or taking");
}

TEST(Corrections, OfManyNearAShortWordAClearOne) {
  std::vector<MeantWord> words = {{"load", 40}, {"lead", 20}, {"laid", 1}, {"land", 1}};
  EXPECT_EQ(Site(words).For("laad"), "load or lead or laid");
  words.push_back({"lard", 1});
  EXPECT_EQ(Site(words).For("laad"), "");
  words[1].pages = 9;  // further behind
  EXPECT_EQ(Site(words).For("laad"), "load or lead or laid");
}

TEST(Corrections, StopWordsStayWhereTheyWere) {
  const struct {
    const char* what;
    const char* typed;
    const char* expected;
  } cases[] = {
      {"between", "fucntion the library", "function the library!"},
      {"ahead", "how to the libary", "how to the library!"},
      {"behind", "libary how to", "library how to!"},
      {"on all sides", "how fucntion to libary the", "how function to library the!"},
      {"ahead of an exclusion", "libary -cat the", "library the -cat!"},
      {"a phrase has its own, and no page has it", "\"the libary\" how", "\"the library\" how"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Site site(Words());
    Set(site.site.settings.StopWords, "how the to");
    EXPECT_EQ(site.For(c.typed), c.expected);
  }
}

TEST(Corrections, ThresholdTable) {
  const struct {
    int32_t lessThan;
    const char* typed;
    const char* expected;
  } cases[] = {
      {0, "fucntion", ""},         {-1, "fucntion", ""},  {2, "fucntion", "function!"},
      {3, "junction", "function"},  // on fewer pages; f and j are no neighbours
      {2, "junction", ""},         {100, "function", ""},  // nothing near it is on more pages
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.typed);
    Site site(Words());
    site.site.settings.SpellingWhenLessThan = c.lessThan;
    EXPECT_EQ(site.For(c.typed), c.expected);
  }
}

TEST(Corrections, WordsThatAreAsNearAreOfferedTogether) {
  const std::vector<MeantWord> words = {{"house", 20}, {"mouse", 20}, {"moose", 1}, {"douse", 19}};
  EXPECT_EQ(Site(words).For("qouse"), "house or mouse or douse");
}

TEST(Corrections, PagesOfOtherTermsTellWhatIsMeant) {
  const std::vector<MeantWord> words = {{"bark", 30}, {"bork", 8}, {"tree", 20}};
  Site alone(words, support::CorrectionsFile(words), "bork");
  EXPECT_EQ(alone.For("tree birk"), "tree bark or tree bork");
  // Those that have the rarer word, and none of the other's.
  Site together(words, support::CorrectionsFile(words), "bork");
  together.matches.touched[0] = uint64_t{0xFF} << (kPages - 8);
  EXPECT_EQ(together.For("tree birk"), "tree bork or tree bark");
}

TEST(Corrections, WhatIsOnOneOfManyPagesIsNotCertain) {
  Site site({{"library", 2}});
  EXPECT_EQ(site.For("libary"), "library!");
  site.site.settings.NumPages = 512;
  EXPECT_EQ(site.For("libary"), "library");
}

TEST(Corrections, StemsAreLookedUpAndWordsOffered) {
  const std::vector<MeantWord> words = {{"rebas", 9}};
  Site site(words, support::CorrectionsFile({{"rebase", 9}, {"rebased", 9}, {"rebasing", 9}}));
  site.site.settings.UseStemming = 1;
  EXPECT_EQ(site.For("rebsae"), "rebase!");
  EXPECT_EQ(site.For("rebasnig"), "rebasing!");
  EXPECT_EQ(site.For("rebases"), "");  // found by its stem
}

TEST(Corrections, WordsThatTheIndexLacksAreNotOffered) {
  Site site({{"library", 3}}, support::CorrectionsFile({{"library", 3}, {"liberty", 90}}));
  EXPECT_EQ(site.For("libery"), "");
  EXPECT_EQ(site.For("librery"), "library!");
}

TEST(Corrections, OnlyWithTheFile) {
  Site site(Words(), "not of the form");
  EXPECT_EQ(site.For("fucntion"), "");
}

TEST(Corrections, OnlyWithBothSettings) {
  Settings settings;
  EXPECT_FALSE(CorrectsByLetters(settings));
  settings.SpellingDistance = 1;
  EXPECT_FALSE(CorrectsByLetters(settings));
  settings.Spelling = 1;
  EXPECT_TRUE(CorrectsByLetters(settings));
  settings.SpellingDistance = 2;
  EXPECT_FALSE(CorrectsByLetters(settings));
}

}  // namespace
}  // namespace vela
