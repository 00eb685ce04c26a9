#include "search/lookup.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::LoadedSite;
using support::NewPage;

// The pages that the records of a term name, in the order met.
using Pages = std::vector<uint32_t>;

struct Lookup {
  TermResult result;
  LookupCounts counts;
  Pages pages;
};

// One search of several terms over a site.
struct TermRun {
  LoadedSite& site;
  MatchBudget budget;
  bool limitReached = false;

  TermRun(LoadedSite& loaded, int32_t maxMatches, int32_t termCount)
      : site(loaded), budget(MakeMatchBudget(maxMatches, termCount)) {}

  Lookup Find(const std::string& word, bool isWildcard, bool isExclusion = false) {
    Lookup lookup;
    const LookupTerm term = {.word = word, .isExclusion = isExclusion};
    const LookupInput input = {.settings = site.settings,
                               .dictionary = site.dictionary,
                               .wordMap = site.files.wordMap.bytes(),
                               .budget = budget,
                               .limitReached = limitReached};
    const auto add = [&](const WordMapRecord& record) {
      if (record.page >= 100) return false;
      lookup.pages.push_back(record.page);
      return true;
    };
    lookup.result = isWildcard ? LookUpPattern(term, input, lookup.counts, add)
                               : LookUpWord(term, input, lookup.counts, add);
    return lookup;
  }
};

// Words 0 and 1 are reserved; word n from 2 on stands on page n.
IndexBuilder Words(const std::vector<std::string>& words) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4").Set("DictReservedLimit", "1").Page(NewPage("a.html"));
  builder.Word("cat", {{90, 1, 0, 0}}).Word("cot", {{91, 1, 0, 0}});
  uint32_t page = 2;
  for (const std::string& word : words) builder.Word(word, {{page++, 10, 0, 0}});
  return builder;
}

Pages PagesOf(const IndexBuilder& builder, const std::string& word, bool isWildcard) {
  LoadedSite site(builder);
  TermRun run(site, 1000, 1);
  const Lookup lookup = run.Find(word, isWildcard);
  EXPECT_EQ(lookup.result.status, TermStatus::kOk);
  EXPECT_FALSE(run.limitReached);
  return lookup.pages;
}

TEST(Lookup, WildcardComparesCaseOnlyWithoutLowerCasing) {
  EXPECT_EQ(PagesOf(Words({"cat"}).Set("ToLowerSearchWords", "0"), "Ca*", true), Pages{});
  EXPECT_EQ(PagesOf(Words({"cat"}).Set("ToLowerSearchWords", "1"), "Ca*", true), Pages{2});
}

TEST(Lookup, QuestionMarkMatchesOneCharacter) {
  EXPECT_EQ(PagesOf(Words({"cat", "cart", "cut", "ct"}), "c?t", true), (Pages{2, 4}));
}

TEST(Lookup, SubstringTermMatchesInsideWords) {
  EXPECT_EQ(PagesOf(Words({"cart", "artist", "oak"}).Set("SearchAsSubstring", "1"), "*art*", true),
            (Pages{2, 3}));
}

TEST(Lookup, LaterPositiveTermsReadNothingOnceTheLimitIsPassed) {
  LoadedSite site(Words({"oak", "oat", "elm"}));
  TermRun run(site, 2, 1);
  EXPECT_EQ(run.Find("oa*", true).pages, (Pages{2, 3}));
  EXPECT_FALSE(run.limitReached);
  EXPECT_EQ(run.Find("elm", false).pages, Pages{});
  EXPECT_TRUE(run.limitReached);
  EXPECT_EQ(run.Find("oak", false).pages, Pages{});
  EXPECT_EQ(run.Find("elm", false, true).pages, Pages{4});
  EXPECT_EQ(run.Find("oa*", true, true).pages, (Pages{2, 3}));
}

TEST(Lookup, ExactTable) {
  const IndexBuilder builder = Words({"oak", "Oak", "oak"})
                                   .Variant("oaks")
                                   .WordWithOffset("elm", "-1")
                                   .WordWithEmptyList("yew");
  const struct {
    const char* what;
    const char* word;
    Pages pages;
    bool hasNoList;
  } cases[] = {
      {"the first of two equal words", "oak", {2}, false},
      {"by case", "Oak", {3}, false},
      {"not by its variant", "oaks", {}, false},
      {"a reserved word", "cat", {}, false},
      {"no such word", "ash", {}, false},
      {"a word without a list", "elm", {}, true},
      {"a list without records", "yew", {}, false},
      {"an empty word", "", {}, false},
      {"a phrase", "oak elm", {}, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    LoadedSite site(builder);
    site.settings.ToLowerSearchWords = 1;  // exact words compare byte by byte all the same
    TermRun run(site, 1000, 1);
    const Lookup lookup = run.Find(c.word, false);
    EXPECT_EQ(lookup.result.status, TermStatus::kOk);
    EXPECT_EQ(lookup.pages, c.pages);
    EXPECT_EQ(lookup.counts.records, static_cast<int64_t>(c.pages.size()));
    EXPECT_EQ(lookup.counts.hasNoList, c.hasNoList);
  }
}

TEST(Lookup, WildcardTable) {
  const IndexBuilder builder = Words({"oak"})
                                   .Variant("Eiche")
                                   .Variant("roble")
                                   .WordWithOffset("oat", "-1")
                                   .Word("ash", {{7, 10, 0, 0}, {8, 10, 0, 0}});
  const struct {
    const char* what;
    const char* pattern;
    Pages pages;
  } cases[] = {
      {"everything but reserved words and words without a list", "*", {2, 7, 8}},
      {"by the first variant", "Ei*", {2}},
      {"by the second variant", "*ble", {2}},
      {"once, though the word and a variant match", "?*", {2, 7, 8}},
      {"only a word without a list", "oa?*t", {}},
      {"all records of the list", "a?h", {7, 8}},
      {"none", "x*", {}},
      {"the whole word must fit", "?", {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    LoadedSite site(builder);
    TermRun run(site, 1000, 1);
    const Lookup lookup = run.Find(c.pattern, true);
    EXPECT_EQ(lookup.result.status, TermStatus::kOk);
    EXPECT_EQ(lookup.pages, c.pages);
    EXPECT_FALSE(lookup.counts.hasNoList);
  }
}

TEST(Lookup, ReservedLimits) {
  const struct {
    const char* what;
    int32_t limit;
    int32_t first;
  } cases[] = {
      {"entry 0 is always reserved", 0, 1},
      {"up to the limit", 41, 42},
      {"no entry", -1, 0},
      {"negative", -100, 0},
      {"the most negative", INT32_MIN, 0},
      {"the largest", INT32_MAX, INT32_MAX},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    settings.DictReservedLimit = c.limit;
    EXPECT_EQ(FirstSearchedWord(settings), c.first);
  }
}

TEST(Lookup, ReservedLimitBeyondTheDictionary) {
  EXPECT_EQ(PagesOf(Words({"oak"}).Set("DictReservedLimit", "1000"), "*", true), Pages{});
  EXPECT_EQ(PagesOf(Words({"oak"}).Set("DictReservedLimit", "2147483647"), "oak", false), Pages{});
}

TEST(MatchBudget, SharesAreRoundedUp) {
  const struct {
    int32_t maxMatches;
    int32_t terms;
    int32_t perTerm;
  } cases[] = {
      {100, 0, 100}, {100, 1, 100}, {100, 3, 34}, {99, 3, 33}, {1, 7, 1},
      {0, 2, 0},     {2, 4, 1},     {5, 4, 2},    {-3, 2, -1}, {INT32_MAX, 2, 1073741824},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.maxMatches);
    const MatchBudget budget = MakeMatchBudget(c.maxMatches, c.terms);
    EXPECT_EQ(budget.total, c.maxMatches);
    EXPECT_EQ(budget.perTerm, c.perTerm);
    EXPECT_EQ(budget.used, 0);
  }
}

TEST(MatchBudget, OneTermsShareEndsItsScanWithoutTheFlag) {
  LoadedSite site(Words({"oak", "oat", "oar", "elm"}));
  TermRun run(site, 4, 2);
  EXPECT_EQ(run.Find("oa*", true).pages, (Pages{2, 3}));
  EXPECT_FALSE(run.limitReached);
  // The third match counted, although it was not read: one is left for the whole search.
  EXPECT_EQ(run.budget.used, 3);
  EXPECT_EQ(run.Find("elm", false).pages, Pages{5});
  EXPECT_FALSE(run.limitReached);
}

TEST(MatchBudget, ExclusionsCountButAreNotStopped) {
  LoadedSite site(Words({"oak", "oat", "oar", "elm"}));
  TermRun run(site, 3, 1);
  EXPECT_EQ(run.Find("oa*", true, true).pages, (Pages{2, 3, 4}));
  EXPECT_FALSE(run.limitReached);
  EXPECT_EQ(run.budget.used, 3);
  EXPECT_EQ(run.Find("elm", false).pages, Pages{});
  EXPECT_TRUE(run.limitReached);
}

TEST(MatchBudget, WordsWithoutListsDoNotCount) {
  LoadedSite site(Words({"oak"}).WordWithOffset("oat", "-1").Word("oar", {{5, 10, 0, 0}}));
  TermRun run(site, 2, 1);
  EXPECT_EQ(run.Find("oa*", true).pages, (Pages{2, 5}));
  EXPECT_FALSE(run.limitReached);
}

TEST(MatchBudget, OfNothing) {
  LoadedSite site(Words({"oak"}));
  TermRun run(site, 0, 1);
  EXPECT_EQ(run.Find("elm", false).pages, Pages{});
  EXPECT_FALSE(run.limitReached);
  EXPECT_EQ(run.Find("oak", false).pages, Pages{});
  EXPECT_TRUE(run.limitReached);
}

TEST(Lookup, DamagedLists) {
  const struct {
    const char* what;
    const char* offset;
    TermStatus status;
    uint64_t failedOffset;
  } cases[] = {
      {"behind the end", "99999", TermStatus::kMissingData, 0},
      {"negative", "-2", TermStatus::kSeekFailed, UINT64_MAX - 1},
  };
  for (const auto& c : cases) {
    for (const bool isWildcard : {false, true}) {
      SCOPED_TRACE(c.what);
      LoadedSite site(Words({"oak"}).WordWithOffset("bad", c.offset));
      TermRun run(site, 1000, 1);
      const TermResult result = run.Find("bad", isWildcard).result;
      EXPECT_EQ(result.status, c.status);
      EXPECT_EQ(result.offset, c.failedOffset);
    }
  }
}

TEST(Lookup, RefusedRecordEndsTheLookup) {
  LoadedSite site(Words({}).Word("oak", {{2, 1, 0, 0}, {100, 1, 0, 0}, {3, 1, 0, 0}}));
  TermRun run(site, 1000, 1);
  const Lookup lookup = run.Find("oak", false);
  EXPECT_EQ(lookup.result.status, TermStatus::kInvalidPage);
  EXPECT_EQ(lookup.pages, Pages{2});
}

}  // namespace
}  // namespace vela
