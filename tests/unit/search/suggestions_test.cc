#include "search/suggestions.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::LoadedSite;
using support::NewPage;
using support::Repeat;

using Texts = std::vector<std::string>;
// A term as the search looked it up, and the records read for it.
using Terms = std::vector<std::pair<std::string, int64_t>>;

struct Line {
  const char* key;
  std::array<int32_t, 3> words;
};

// Dictionary numbers; 0 and 1 are reserved.
enum Number : int32_t { kNone, kR1, kGarden, kGardens, kCat, kCot, kCut, kKat, kIphone, kMill };

// Searches are told of a suggestion below one record.
struct Speller {
  LoadedSite site;
  SpellingTable table;
  Stemmer stemmer;

  explicit Speller(const std::vector<Line>& lines) : site(Words()) {
    site.settings.Spelling = 1;
    site.settings.SpellingWhenLessThan = 1;
    EXPECT_EQ(stemmer.Create(2, false), StemmerStatus::kOk);
    site.settings.NumSpellings = static_cast<int32_t>(lines.size());
    std::ofstream file(site.scratch.path() / kSpellingFileName, std::ios::binary);
    for (const Line& line : lines) {
      file << line.key;
      for (const int32_t word : line.words) file << " " << word;
      file << "\n";
    }
    file.close();
    EXPECT_EQ(LoadSpelling(table, site.directory, site.settings, site.files.lookup),
              LoadStatus::kOk);
  }
  static IndexBuilder Words() {
    IndexBuilder builder;
    builder.Set("DictIDLen", "4").Set("DictReservedLimit", "1").Page(NewPage("a.html"));
    for (const char* word : {"r0", "r1", "garden", "gardens", "cat", "cot", "cut", "kat"}) {
      builder.Word(word);
    }
    builder.Word("iphone").Variant("IPHONE\u00C9").Variant("iphones").Word("Mill");
    return builder;
  }
  Texts For(const Terms& terms) {
    TermSearch search;
    EXPECT_TRUE(search.terms.TryAllocate(terms.size()));
    for (size_t i = 0; i < terms.size(); ++i) {
      search.terms[i].shown = "not looked at";
      Set(search.terms[i].word, terms[i].first);
      search.terms[i].records = terms[i].second;
    }
    const Suggestions made =
        MakeSuggestions(search, table, site.dictionary, site.settings, stemmer);
    Texts texts;
    for (int32_t i = 0; i < made.count; ++i) texts.emplace_back(View(made.texts[i]));
    return texts;
  }
};

const std::vector<Line>& Sounds() {
  static const std::vector<Line> lines = {
      {"IFN", {kIphone, kNone, kNone}},
      {"KRTN", {kGarden, kNone, kNone}},
      {"KT", {kCat, kCot, kCut}},
      {"ML", {kMill, kNone, kNone}},
  };
  return lines;
}

TEST(Suggestions, TermsTable) {
  const struct {
    const char* what;
    Terms terms;
    Texts expected;
  } cases[] = {
      {"no terms", {}, {}},
      {"a word that sounds alike", {{"gardin", 0}}, {"garden"}},
      {"a term with records enough", {{"gardin", 1}}, {}},
      {"only the second word is rare", {{"mill", 1}, {"gardin", 0}}, {"mill garden"}},
      {"only the first word is rare", {{"gardin", 0}, {"of", 3}}, {"garden of"}},
      {"a rare word of no known sound disappears", {{"gardin", 0}, {"zzz", 0}}, {"garden"}},
      {"the first one leaves its blank", {{"zzz", 0}, {"gardin", 0}}, {" garden"}},
      {"words of unknown sounds alone", {{"zzz", 0}, {"mill", 1}}, {}},
      {"a word without letters", {{"123", 0}, {"gardin", 0}}, {" garden"}},
      {"an empty term", {{"", 0}, {"gardin", 0}}, {" garden"}},
      {"alternatives for one term", {{"kut", 0}}, {"cat", "cot", "cut"}},
      {"the term itself is none of them", {{"cot", 0}}, {"cat", "cut"}},
      {"nor the first", {{"cat", 0}}, {"cot", "cut"}},
      {"no alternatives for two terms", {{"kut", 0}, {"mill", 1}}, {"cat mill"}},
      {"two rare words", {{"kut", 0}, {"gardin", 0}}, {"cat garden"}},
      {"words are suggested in lower case", {{"mil", 0}}, {"mill"}},
      {"as they are displayed, folded by bytes", {{"ifon", 0}}, {"iphone\u00C9"}},
      {"a word that is displayed otherwise than searched", {{"iphone", 0}}, {"iphone\u00C9"}},
      {"a word suggested already", {{"garden", 0}}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Speller(Sounds()).For(c.terms), c.expected);
  }
}

TEST(Suggestions, ThresholdTable) {
  const struct {
    int32_t lessThan;
    int64_t records;
    bool expected;
  } cases[] = {{0, 0, false},
               {1, 0, true},
               {1, 1, false},
               {5, 4, true},
               {5, 5, false},
               {-1, 0, false},
               {INT32_MAX, int64_t{1} << 31, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.lessThan);
    Speller speller(Sounds());
    speller.site.settings.SpellingWhenLessThan = c.lessThan;
    EXPECT_EQ(speller.For({{"gardin", c.records}}), c.expected ? Texts{"garden"} : Texts{});
  }
}

TEST(Suggestions, OnlyWithSpellingOnAndTheTableLoaded) {
  for (int32_t value : {0, 2}) {
    Speller off(Sounds());
    off.site.settings.Spelling = value;
    EXPECT_EQ(off.For({{"gardin", 0}}), Texts{});
  }
  Speller without(Sounds());
  without.table.isLoaded = false;
  EXPECT_EQ(without.For({{"gardin", 0}}), Texts{});
}

TEST(Suggestions, LinesTable) {
  const struct {
    const char* what;
    std::vector<Line> lines;
    Texts expected;
  } cases[] = {
      {"empty slots are passed over", {{"KT", {kNone, kCot, kNone}}}, {"cot"}},
      {"the first slot may be the only one", {{"KT", {kCot, kNone, kNone}}}, {"cot"}},
      {"numbers of no word, too", {{"KT", {-1, 99, kCut}}}, {"cut"}},
      {"an entry of nothing", {{"KT", {kNone, kNone, kNone}}}, {}},
      {"the next line of the same sound",
       {{"KT", {kKat, kNone, kNone}}, {"KT", {kCot, kCut, kNone}}},
       {"cot", "cut"}},
      {"alternatives are of one line",
       {{"KT", {kKat, kCat, kNone}}, {"KT", {kCot, kNone, kNone}}},
       {"cat"}},
      {"a sound behind ends the search", {{"L", {kMill, 0, 0}}, {"KT", {kCat, 0, 0}}}, {}},
      {"sounds before are passed over", {{"KRTN", {kGarden, 0, 0}}, {"KT", {kCat, 0, 0}}}, {"cat"}},
      {"a longer sound is another", {{"KTS", {kCat, 0, 0}}}, {}},
      {"no lines", {}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Speller(c.lines).For({{"kat", 0}}), c.expected);
  }
}

TEST(Suggestions, FoldedAsUtf8) {
  Speller speller(Sounds());
  speller.site.settings.UseUTF8 = 1;
  EXPECT_EQ(speller.For({{"ifon", 0}}), Texts{"iphone\u00E9"});
}

TEST(Suggestions, StemmedWithStemmingOn) {
  const std::vector<Line> lines = {{"KRTN", {kNone, kNone, kNone}},
                                   {"KRTNS", {kGardens, kGarden, kNone}}};
  Speller stemming(lines);
  stemming.site.settings.UseStemming = 1;
  EXPECT_EQ(stemming.For({{"gardins", 0}}), (Texts{"garden", "garden"}));
  Speller plain(lines);
  EXPECT_EQ(plain.For({{"gardins", 0}}), (Texts{"gardens", "garden"}));
  // What differs from the term only before its stem is taken is no suggestion.
  Speller same({{"KRTN", {kGardens, kGarden, kNone}}});
  same.site.settings.UseStemming = 1;
  EXPECT_EQ(same.For({{"garden", 0}}), Texts{});
  same.site.settings.UseStemming = 0;
  EXPECT_EQ(same.For({{"garden", 0}}), Texts{"gardens"});
}

TEST(Suggestions, OffersWordsInThePlaceOfStems) {
  const std::vector<Line> lines = {{"KRTNS", {kGardens, kGarden, kNone}}};
  Speller speller(lines);
  speller.site.settings.UseStemming = 1;
  speller.site.settings.OfferWords = 1;
  EXPECT_EQ(speller.For({{"gardins", 0}}), (Texts{"gardens", "garden"}));
  // What is looked up as the term is still no other word.
  EXPECT_EQ(speller.For({{"garden", 0}}), Texts{});
  // Terms that stay are offered as they were typed.
  EXPECT_EQ(speller.For({{"gardins", 0}, {"rebas", 1}}), Texts{"gardens not looked at"});
  speller.site.settings.OfferWords = 2;
  EXPECT_EQ(speller.For({{"gardins", 0}, {"rebas", 1}}), Texts{"garden rebas"});
}

TEST(Suggestions, LongQueryIsCut) {
  Speller speller(Sounds());
  const std::string longest(2085, 'a');
  const Texts texts = speller.For(
      {{"gardin", 0}, {longest, 1}, {longest, 1}, {longest, 1}, {longest, 1}, {longest, 1}});
  const std::string whole = "garden" + Repeat(" " + longest, 5);
  EXPECT_EQ(texts, Texts{whole.substr(0, 10239)});
}

TEST(Suggestions, DroppedWordsStayWhereTheyWere) {
  Speller speller(Sounds());
  const auto offered = [&](const std::vector<std::string>& words,
                           const std::vector<DroppedWord>& dropped) {
    TermSearch search;
    EXPECT_TRUE(search.terms.TryAllocate(words.size()));
    for (size_t i = 0; i < words.size(); ++i) {
      search.terms[i].shown = words[i];
      Set(search.terms[i].word, words[i]);
    }
    search.dropped = dropped;
    const Suggestions made = MakeSuggestions(search, speller.table, speller.site.dictionary,
                                             speller.site.settings, speller.stemmer);
    return std::string(made.texts[0].bytes);
  };
  EXPECT_EQ(offered({"gardin", "kut"}, {{"how", 0}, {"the", 1}, {"a", 1}, {"to", 2}}),
            "how garden the a cat to");
  // What sounds like nothing goes, and so do those ahead of it.
  EXPECT_EQ(offered({"gardin", "zzz", "kut"}, {{"the", 1}, {"to", 2}}), "garden to cat");
}

TEST(Suggestions, ExcludedWordsStayAsTheyAreWithPlainQueries) {
  Speller speller(Sounds());
  speller.site.settings.AllowExactPhrase = 1;
  const auto offered = [&](std::string_view first, std::string_view excluded) {
    TermSearch search;
    EXPECT_TRUE(search.terms.TryAllocate(2));
    search.terms[0].shown = first;
    Set(search.terms[0].word, first);
    search.terms[1].shown = excluded;
    Set(search.terms[1].word, excluded.substr(1));
    const Suggestions made = MakeSuggestions(search, speller.table, speller.site.dictionary,
                                             speller.site.settings, speller.stemmer);
    return std::string(made.asTyped ? "as typed: " : "") + made.texts[0].bytes;
  };
  EXPECT_EQ(offered("gardin", "-kut"), "garden cat");
  speller.site.settings.PlainQueries = 1;
  EXPECT_EQ(offered("gardin", "-kut"), "as typed: garden -kut");
  EXPECT_EQ(offered("gardin", "-kut <b>"), "as typed: garden -\"kut <b>\"");
  EXPECT_EQ(offered("zzz", "-kut"), "");
}

TEST(Suggestions, AsterisksThatTheProgramAddedAreNoPartOfAWord) {
  Speller speller(Sounds());
  speller.site.settings.SearchAsSubstring = 1;
  const Terms terms = {{"*cat*", 0}};
  EXPECT_EQ(speller.For(terms), (Texts{"cat", "cot", "cut"}));
  speller.site.settings.AmendedAnswers = 1;
  EXPECT_EQ(speller.For(terms), (Texts{"cot", "cut"}));
  EXPECT_EQ(speller.For({{"*gardin*", 0}, {"*mill*", 1}}), Texts{"garden mill"});
}

}  // namespace
}  // namespace vela
