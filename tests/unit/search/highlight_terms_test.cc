#include "search/highlight_terms.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/failing_allocation.h"

namespace vela {
namespace {

// What is collected from a query, each term followed by what it is: "w" for a pattern, "p" for a
// phrase.
std::vector<std::string> Collected(std::string_view query, bool allowExactPhrase) {
  TermList terms;
  bool hasPhrase = false;
  EXPECT_TRUE(SplitQuery(query, terms, hasPhrase));
  HighlightTerms highlight;
  EXPECT_TRUE(CollectHighlightTerms(highlight, terms, allowExactPhrase));
  std::vector<std::string> collected;
  for (const HighlightTerm& term : highlight) {
    collected.push_back(std::string(term.text) + (term.isWildcard ? "/w" : "") +
                        (term.isPhrase ? "/p" : ""));
  }
  return collected;
}

TEST(HighlightTerms, CollectedTable) {
  const struct {
    const char* what;
    const char* query;
    bool allowExactPhrase;
    std::vector<std::string> expected;
  } cases[] = {
      {"an empty query has none", "", true, {}},
      {"words in their order", "cat Running", true, {"cat", "Running"}},
      {"patterns", "ca* c?t cat", true, {"ca*/w", "c?t/w", "cat"}},
      {"a phrase is one term", "\"big cat\" dog", true, {"big cat/p", "dog"}},
      {"one word in quotes is a word", "\"cat\"", true, {"cat"}},
      {"a pattern may lie inside a phrase", "\"big c*\"", true, {"big c*/w/p"}},
      {"without phrases a blank makes none", "\"big cat\"", false, {"big cat"}},
      {"exclusions mark nothing", "cat -dog -\"big dog\"", true, {"cat"}},
      {"site restrictions mark nothing", "site:a.test cat url:b", true, {"cat"}},
      {"nor do excluded ones", "-site:a.test", true, {}},
      {"a restriction without a colon is a word", "site cat", true, {"site", "cat"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Collected(c.query, c.allowExactPhrase), c.expected);
  }
}

TEST(HighlightTerms, OutOfMemory) {
  TermList terms;
  bool hasPhrase = false;
  ASSERT_TRUE(SplitQuery("cat", terms, hasPhrase));
  HighlightTerms highlight;
  ASSERT_TRUE(CollectHighlightTerms(highlight, terms, true));
  g_failAllocationNumber = 1;
  EXPECT_FALSE(CollectHighlightTerms(highlight, terms, true));
  g_failAllocationNumber = 0;
  EXPECT_EQ(highlight.begin(), highlight.end());
}

TEST(MatchesTerm, Table) {
  constexpr TextMode kFolding = {true, false};
  constexpr TextMode kExact = {false, false};
  constexpr TextMode kFoldingUtf8 = {true, true};
  const struct {
    const char* what;
    TextMode mode;
    const char* term;
    const char* word;
    bool expected;
  } cases[] = {
      {"the same word", kExact, "cat", "cat", true},
      {"another case", kExact, "cat", "Cat", false},
      {"another case, folded", kFolding, "cat", "CAT", true},
      {"the term may have capitals", kFolding, "CAT", "cat", true},
      {"a longer word", kFolding, "cat", "cats", false},
      {"a shorter word", kFolding, "cats", "cat", false},
      {"accented capitals in UTF-8", kFoldingUtf8, "\u00E9cole", "\u00C9COLE", true},
      {"no folding of accents", kFoldingUtf8, "ecole", "\u00E9cole", false},
      {"a pattern's beginning", kFolding, "ca*", "cat", true},
      {"also of longer words", kFolding, "ca*", "Cart", true},
      {"not inside a word", kFolding, "ca*", "scat", false},
      {"a pattern respects case", kExact, "Ca*", "cat", false},
      {"a pattern folds only ASCII", kFoldingUtf8, "\u00E9c*", "\u00C9COLE", false},
      {"one character", kFolding, "c?t", "cut", true},
      {"an empty term is no word", kFolding, "", "cat", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string_view text = c.term;
    const bool isWildcard = text.find_first_of("*?") != text.npos;
    EXPECT_EQ(MatchesTerm(c.mode, {text, isWildcard, false}, c.word), c.expected);
  }
}

TEST(NextPhraseWord, RunsOfBlanksMakeNoEmptyWords) {
  const struct {
    const char* phrase;
    std::vector<std::string> expected;
  } cases[] = {
      {"", {}},         {"   ", {}}, {"big cat", {"big", "cat"}}, {"  big   cat  ", {"big", "cat"}},
      {"cat", {"cat"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.phrase);
    std::vector<std::string> words;
    std::string_view rest = c.phrase;
    std::string_view word;
    while (NextPhraseWord(rest, word)) words.emplace_back(word);
    EXPECT_EQ(words, c.expected);
  }
}

}  // namespace
}  // namespace vela
