#include "search/term_search.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/failing_allocation.h"
#include "support/loaded_site.h"
#include "support/with_lookup.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::LoadedSite;
using support::NewPage;
using support::PageTextToken;

using Texts = std::vector<std::string>;
using Pages = std::vector<uint32_t>;

// red: pages 0 1 2; oak: 1 2; trees and tree: 3; ash is on no page; "red oak" stands on page 2.
IndexBuilder Garden() {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4")
      .Set("DictReservedLimit", "1")
      .Set("MaxMatches", "100")
      .Set("ToLowerSearchWords", "1")
      .Set("AllowExactPhrase", "1")
      .Set("MaxContextSeeks", "10");
  for (const char* url : {"a.html", "b.html", "c.html", "d.html"}) builder.Page(NewPage(url));
  builder.Word("r0")
      .Word("r1")
      .Word("red", {{0, 5, 1, 0, true}, {1, 5, 1, 3, true}, {2, 5, 1, 5, true}})
      .Word("oak", {{1, 7, 1, 2, true}, {2, 7, 1, 6, true}})
      .Word("tree", {{3, 9, 1, 8, true}})
      .Word("ash")
      .Word("elm", {{9, 1, 1, 0, true}});  // names a page that is not there
  std::vector<PageTextToken> tokens;
  for (uint32_t word : {2U, 0U, 3U, 2U, 0U, 2U, 3U, 0U, 4U, 0U}) tokens.push_back({word, 0});
  return builder.Tokens(tokens);
}

struct Terms {
  LoadedSite site;
  Query query;
  TermSearch search;
  Matches matches;
  Stemmer stemmer;
  TermStatus status = TermStatus::kOk;

  explicit Terms(const IndexBuilder& builder) : site(builder) {
    EXPECT_EQ(stemmer.Create(2, false), StemmerStatus::kOk);
  }
  void Run(const std::string& typed) {
    Set(query.typed, typed);
    ASSERT_TRUE(ParseQuery(query, site.settings));
    ASSERT_TRUE(AllocateMatches(matches, site.settings.NumPages));
    ASSERT_TRUE(StartTermSearch(search, query.terms, site.settings));
    search.phraseBudget = {site.settings.MaxContextSeeks, 0, 1, [] { return 0.0; }};
    status = SearchTerms(search, Input(), matches).status;
  }
  TermSearchInput Input() {
    return {.settings = site.settings,
            .dictionary = site.dictionary,
            .pages = site.files.pages,
            .wordMap = site.files.wordMap.bytes(),
            .pageText = site.files.pageText.bytes(),
            .lookup = site.files.lookup,
            .sort = 0,
            .stemmer = stemmer};
  }
  // The pages that the terms left with a score.
  Pages Found() const {
    Pages found;
    for (uint32_t page = 0; page < matches.pages.size(); ++page) {
      if (matches.pages[page].score > 0) found.push_back(page);
    }
    return found;
  }
  Texts Skipped() const {
    Texts skipped;
    for (int32_t i = 0; i < search.skipped.count; ++i) {
      skipped.emplace_back(search.skipped.terms[static_cast<size_t>(i)]);
    }
    return skipped;
  }
};

TEST(StartTermSearch, TermsAreTakenOver) {
  const struct {
    const char* what;
    const char* query;
    Texts shown;
    Texts words;
  } cases[] = {
      {"as listed", "red -oak", {"red", "-oak"}, {"red", "oak"}},
      {"a phrase", "\"red oak\" -\"a b\"", {"red oak", "-a b"}, {"red oak", "a b"}},
      {"one minus alone", "red - oak", {"red", "oak", "-"}, {"red", "oak", ""}},
      {"with asterisks", "*red* -*oak*", {"*red*", "-*oak*"}, {"*red*", "*oak*"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Terms terms(Garden());
    Set(terms.query.typed, c.query);
    ASSERT_TRUE(ParseQuery(terms.query, terms.site.settings));
    ASSERT_TRUE(StartTermSearch(terms.search, terms.query.terms, terms.site.settings));
    Texts shown;
    Texts words;
    for (const SearchedTerm& term : terms.search.terms) {
      shown.emplace_back(term.shown);
      words.emplace_back(View(term.word));
    }
    EXPECT_EQ(shown, c.shown);
    EXPECT_EQ(words, c.words);
  }
}

TEST(StartTermSearch, OutOfMemoryAtEveryAllocation) {
  for (int32_t failing : {1, 2}) {
    Terms terms(Garden());
    Set(terms.query.typed, "red oak");
    ASSERT_TRUE(ParseQuery(terms.query, terms.site.settings));
    g_failAllocationNumber = failing;
    EXPECT_FALSE(StartTermSearch(terms.search, terms.query.terms, terms.site.settings));
    g_failAllocationNumber = 0;
  }
}

TEST(SearchTerms, PagesTable) {
  const struct {
    const char* what;
    const char* query;
    Pages found;
    std::vector<int64_t> records;  // read for each term
  } cases[] = {
      {"a word", "red", {0, 1, 2}, {3}},
      {"two words", "red oak", {0, 1, 2}, {3, 2}},
      {"a word of no page", "ash", {}, {0}},
      {"no word at all", "fir", {}, {0}},
      {"a phrase", "\"red oak\"", {2}, {3}},
      {"a phrase in the other order", "\"oak red\"", {1}, {2}},
      {"a phrase of an unknown word", "\"red fir\"", {}, {0}},
      {"a phrase whose first word is on no page", "\"ash red\"", {}, {0}},
      {"a pattern", "*e*d*", {0, 1, 2}, {3}},
      {"an exclusion", "red -oak", {0}, {3, 2}},
      {"an excluded phrase", "red -\"red oak\"", {0, 1}, {3, 3}},
      {"an exclusion of nothing", "red -fir", {0, 1, 2}, {3, 0}},
      {"a word beside a restriction", "red site:a", {0, 1, 2}, {3, 0}},
      {"only a restriction", "site:a", {}, {0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Terms terms(Garden());
    terms.Run(c.query);
    EXPECT_EQ(terms.status, TermStatus::kOk);
    EXPECT_EQ(terms.Found(), c.found);
    std::vector<int64_t> records;
    for (const SearchedTerm& term : terms.search.terms) records.push_back(term.records);
    EXPECT_EQ(records, c.records);
  }
}

TEST(SearchTerms, SkippedTable) {
  const struct {
    const char* what;
    const char* query;
    Texts skipped;
    int32_t skippedCount;  // what AND mode does not ask for
    int32_t excludedCount;
  } cases[] = {
      {"nothing", "red oak", {}, 0, 0},
      {"a short word", "of red", {"of"}, 1, 0},
      {"a word of no page is asked for", "ash red", {"ash"}, 0, 0},
      {"a word that is nowhere is not named", "fir red", {}, 0, 0},
      {"both kinds in their order", "ash of", {"ash", "of"}, 1, 0},
      {"the minus counts for the length", "red -of", {}, 0, 1},
      {"a short exclusion is no exclusion", "red -o", {"-o"}, 1, 0},
      {"empty quotes are short, too", "red \"\"", {""}, 1, 0},
      {"exclusions and restrictions", "red -oak site:a", {}, 0, 2},
      {"an excluded restriction counts once", "red -site:a", {}, 0, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Terms terms(Garden().Set("MinWordLen", "3"));
    terms.Run(c.query);
    EXPECT_EQ(terms.Skipped(), c.skipped);
    EXPECT_EQ(terms.search.skippedCount, c.skippedCount);
    EXPECT_EQ(terms.search.excludedCount, c.excludedCount);
  }
}

TEST(SearchTerms, EmptyQuotesAreSkippedWithoutBeingNamed) {
  Terms terms(Garden());
  terms.Run("red \"\"");
  EXPECT_EQ(terms.Skipped(), Texts{});
  EXPECT_EQ(terms.search.skippedCount, 1);
}

TEST(StartTermSearch, SiteRestrictions) {
  const struct {
    const char* query;
    bool active;
    const char* restriction;
    bool isOnly;
  } cases[] = {
      {"site:a.html", true, "a.html", true},
      {"url:b", true, "b", true},
      {"-site:a", true, "a", true},
      {"red site:a", true, "a", false},
      {"site:a url:b red", true, "b", false},
      {"red", false, "", false},
      {"", false, "", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.query);
    Terms terms(Garden().Set("WordJoinChars", "\".\""));
    terms.Run(c.query);
    EXPECT_EQ(terms.search.site.active, c.active);
    EXPECT_EQ(terms.search.site.text, c.restriction);
    EXPECT_EQ(IsOnlySiteRestriction(terms.search), c.isOnly);
  }
  // What is too short for the index restricts nothing.
  Terms passedOver(Garden().Set("MinWordLen", "6"));
  passedOver.Run("site:a url:b");
  EXPECT_EQ(passedOver.search.site.text, "a");
  EXPECT_EQ(passedOver.search.excludedCount, 1);
}

TEST(SearchTerms, StemmedTable) {
  const struct {
    const char* what;
    const char* query;
    Texts words;  // as they were looked up
    Pages found;
  } cases[] = {
      {"a word", "TREES", {"tree"}, {3}},
      {"an exclusion", "red -oaks", {"red", "oak"}, {0}},
      {"a pattern is left alone", "tree*s", {"tree*s"}, {}},
      {"a word with a digit, too", "trees2", {"trees2"}, {}},
      {"a phrase keeps its text", "\"reds oaks\"", {"reds oaks"}, {2}},
      {"its words are stemmed and folded", "\"REDS oaks\"", {"reds oaks"}, {2}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Terms terms(Garden());
    terms.site.settings.UseStemming = 1;
    terms.Run(c.query);
    Texts words;
    for (const SearchedTerm& term : terms.search.terms) words.emplace_back(View(term.word));
    EXPECT_EQ(words, c.words);
    EXPECT_EQ(terms.Found(), c.found);
  }
}

TEST(SearchTerms, GroupedWordsThatAreNoPhraseAreNotStemmed) {
  Terms terms(Garden());
  terms.site.settings.UseStemming = 1;
  terms.site.settings.AllowExactPhrase = 2;
  terms.Run("\"red oaks\" oaks");
  EXPECT_EQ(View(terms.search.terms[0].word), "red oaks");
  EXPECT_EQ(View(terms.search.terms[1].word), "oak");
  EXPECT_EQ(terms.Found(), (Pages{1, 2}));
}

TEST(SearchTerms, VerificationsThatAreUsedUpStopPositiveTerms) {
  Terms terms(Garden().Set("MaxContextSeeks", "0"));
  terms.Run("\"red oak\" tree");
  EXPECT_EQ(terms.status, TermStatus::kOk);
  EXPECT_TRUE(terms.matches.limitReached);
  EXPECT_EQ(terms.Found(), Pages{});
}

TEST(SearchTerms, DamagedRecordsEndTheSearch) {
  const struct {
    const char* what;
    const char* query;
    TermStatus status;
  } cases[] = {
      {"a page that is not there", "elm", TermStatus::kInvalidPage},
      {"a list behind the file", "bad", TermStatus::kMissingData},
      {"a list at no place", "worse", TermStatus::kSeekFailed},
      {"in a phrase, too", "\"red bad\"", TermStatus::kMissingData},
      {"ahead of other terms", "bad red", TermStatus::kMissingData},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Terms terms(Garden().WordWithOffset("bad", "99999").WordWithOffset("worse", "-2"));
    terms.Run(c.query);
    EXPECT_EQ(terms.status, c.status);
    EXPECT_EQ(terms.Found(), Pages{});
  }
}

TEST(SearchTerms, OutOfMemoryInAPhrase) {
  Terms terms(Garden());
  terms.Run("red");
  Set(terms.search.terms[0].word, "red oak");
  g_failAllocationNumber = 1;
  EXPECT_EQ(SearchTerms(terms.search, terms.Input(), terms.matches).status, TermStatus::kNoMemory);
  g_failAllocationNumber = 0;
}

TEST(StemText, LowerCasesFirst) {
  Stemmer stemmer;
  ASSERT_EQ(stemmer.Create(2, true), StemmerStatus::kOk);
  const struct {
    const char* word;
    const char* expected;
  } cases[] = {
      {"RUNNING", "run"}, {"Mp3", "mp3"},  // not stemmed, but lower-cased
      {"C++", "c++"},     {"DON'T", "don't"}, {"E-Mails", "e-mails"}, {"CAF\u00C9S", "caf\u00E9"},
      {"", ""},
  };
  for (const auto& c : cases) {
    QueryText word;
    Set(word, c.word);
    StemText(word, stemmer, true);
    EXPECT_EQ(View(word), c.expected);
  }
}

// "red oak" stands on every tenth of 400 pages, "red" and "oak" on all.
IndexBuilder Forest() {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4")
      .Set("DictReservedLimit", "1")
      .Set("MaxMatches", "1000")
      .Set("AllowExactPhrase", "1")
      .Set("MaxContextSeeks", "1000");
  std::vector<support::Occurrence> red;
  std::vector<support::Occurrence> oak;
  std::vector<PageTextToken> tokens;
  for (uint32_t page = 0; page < 400; ++page) {
    builder.Page(NewPage(std::to_string(page) + ".html"));
    const bool isBeside = page % 10 == 0;
    red.push_back({page, 5, 1, 4 * page, true});
    oak.push_back({page, 5, 1, 4 * page + (isBeside ? 1U : 2U), true});
    for (uint32_t word : isBeside ? Pages{2, 3, 4, 0} : Pages{2, 4, 3, 0}) {
      tokens.push_back({word, 0});
    }
  }
  builder.Word("r0").Word("r1").Word("red", red).Word("oak", oak).Word("elm");
  builder.File("elms", std::string(size_t{400} * 4 * 4, '\4'));
  return builder.Tokens(tokens);
}

// The pages of Forest() that have the phrase, when little of the text is read from that file; from
// none without a name.
Pages PhraseInForest(const char* stretchesOf) {
  support::ScratchDirectory scratch;
  Forest().WriteTo(scratch.path());
  EXPECT_TRUE(support::AddLookup(scratch.path()));
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  Settings settings;
  EXPECT_EQ(ReadSettingsFile(settings, directory), SettingsStatus::kOk);
  IndexFiles files;
  EXPECT_EQ(OpenIndexFiles(files, directory, settings).status, LoadStatus::kOk);
  Dictionary dictionary;
  EXPECT_EQ(dictionary.Load(directory, settings, files.lookup).status, DictionaryStatus::kOk);
  Query query;
  Set(query.typed, "\"red oak\"");
  EXPECT_TRUE(ParseQuery(query, settings));
  Matches matches;
  EXPECT_TRUE(AllocateMatches(matches, settings.NumPages));
  TermSearch search;
  EXPECT_TRUE(StartTermSearch(search, query.terms, settings));
  search.phraseBudget = {settings.MaxContextSeeks, 0, 1, [] { return 0.0; }};
  Stemmer stemmer;
  FileStretches stretches(directory, stretchesOf);
  const TermSearchInput input = {.settings = settings,
                                 .dictionary = dictionary,
                                 .pages = files.pages,
                                 .wordMap = files.wordMap.bytes(),
                                 .pageText = files.pageText.bytes(),
                                 .lookup = files.lookup,
                                 .stemmer = stemmer,
                                 .pageTextStretches = *stretchesOf != 0 ? &stretches : nullptr};
  EXPECT_EQ(SearchTerms(search, input, matches).status, TermStatus::kOk);
  Pages found;
  for (uint32_t page = 0; page < 400; ++page) {
    if (matches.pages[page].score == 0) continue;
    EXPECT_EQ(matches.pages[page].firstPosition(), uint64_t{page} * 4 * 4);
    found.push_back(page);
  }
  return found;
}

TEST(SearchTerms, APhraseThatFewPagesHaveIsReadInStretches) {
  Pages every10th;
  for (uint32_t page = 0; page < 400; page += 10) every10th.push_back(page);
  EXPECT_EQ(PhraseInForest(""), every10th);
  EXPECT_EQ(PhraseInForest("vela_pagetext.vdat"), every10th);
  // As long as a stretch cannot be had, it is read where it is mapped.
  EXPECT_EQ(PhraseInForest("missing"), every10th);
  // Stretches are read indeed, once it is known that there will be few.
  EXPECT_EQ(PhraseInForest("elms"), (Pages{0, 10, 20, 30}));
}

}  // namespace
}  // namespace vela
