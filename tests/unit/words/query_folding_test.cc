#include "indexer/words/query_folding.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "format/settings_file.h"
#include "text/lower.h"

namespace vela::indexer {
namespace {

TEST(QueryFolding, ItemsFitIntoTheSettings) {
  for (const Folding& folding : QueryFoldings(false)) {
    SCOPED_TRACE(folding.from);
    EXPECT_FALSE(folding.from.empty());
    EXPECT_LE(folding.from.size(), 9u);
    EXPECT_LE(folding.to.size(), 4u);
    EXPECT_EQ(folding.from.find_first_of("\"<&"), std::string::npos);
    EXPECT_EQ(folding.to.find_first_of("\"<&"), std::string::npos);
  }
}

TEST(QueryFolding, TheTableFitsIntoItsLines) {
  size_t from = 0;
  size_t to = 0;
  for (const Folding& folding : QueryFoldings(false)) {
    from += folding.from.size() + sizeof "\"\"";
    to += folding.to.size() + sizeof "\"\"";
  }
  constexpr size_t kKeyBytes = 40;  // of the longer key and what stands around it, at most
  EXPECT_LT(from + kKeyBytes, kSettingsLineLimit);
  EXPECT_LT(to + kKeyBytes, kSettingsLineLimit);
}

TEST(QueryFolding, FoldsQueries) {
  const struct {
    const char *what, *query, *folded;
  } kCases[] = {
      {"a plain query is its own", "cats -dogs +c++ c# node.js g?y wor* \"a b\"",
       "cats -dogs +c++ c# node.js g?y wor* \"a b\""},
      {"dashes", "Monday \u2013 Friday\u2014now", "Monday   Friday now"},
      {"apostrophes", "What\u2019s", "What s"},
      {"quotes", "\u201Cgo\u201D", " go "},
      {"a hyphen between blanks", "a - b", "a b"},
      {"a full stop at the end of a phrase", "\"in the house.\"", "\"in the house \""},
      {"a full stop inside", "3.11 .net v1.* x.?", "3.11 .net v1.* x.?"},
      {"an ellipsis", "\"and so on...\"", "\"and so on \""},
      {"blanks of every width", "a\u3000b\u00A0c", "a b c"},
      {"what cannot be seen", "in\u00ADdex", "index"},
      {"letters of one meaning", "\uFB01ve \uFF26\uFF35\uFF2C\uFF2C \u03C3\u03BF\u03C2",
       "five FULL \u03C3\u03BF\u03C3"},
      {"pictures", "go\u27A1\uFE0F", "go "},
      {"a Turkish word", "\u0130STANBUL \u0131s\u0131", "iSTANBUL isi"},
      {"Arabic vowels and the stroke", "\u0643\u064E\u062A\u064E\u0640\u0628",
       "\u0643\u062A\u0628"},
      {"Arabic letters of one meaning", "\u0623\u0625\u0622\u0671 \u0649 \u0629 \u06A9\u06CC",
       "\u0627\u0627\u0627\u0627 \u064A \u0647 \u0643\u064A"},
      {"Hebrew points", "\u05E9\u05C1\u05B8\u05DC\u05D5\u05B9\u05DD", "\u05E9\u05DC\u05D5\u05DD"},
      {"letters that stand for others", "m\u00B2 CO\u2082 5\u00B5m", "m2 CO2 5\u03BCm"},
      {"an underscore inside", "a_b _c x._d _* a__b", "a_b _c x._d _* a__b"},
      {"an underscore at the end", "\"a __init__\" x_.y", "\"a __init \" x .y"},
      {"a line to write on", "name ____x", "name  x"},
      {"hyphens after brackets", "x[-1] (-obj) '--help' {-a} n=-1", "x[1] (obj) 'help' {a} n 1"},
      {"hyphens behind words", "(re-)use 1-, pre- and f->x", "(re)use 1, pre and f x"},
      {"exclusions", "cats -dogs -\"big birds\"", "cats -dogs -\"big birds\""},
      {"a restriction", "site:example.org url:a_b", "site:example.org url:a_b"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(FoldedQuery(c.query, false), c.folded);
  }
}

TEST(QueryFolding, NamesNoSignsThatTheSearchKnows) {
  for (const Folding& folding : QueryFoldings(true)) {
    for (const char c : std::string_view("-.;=>_~ ")) {
      EXPECT_EQ(folding.from.find(c), std::string::npos);
    }
  }
  EXPECT_LT(QueryFoldings(true).size() * 2, QueryFoldings(false).size());
  EXPECT_EQ(FoldedQuery("\u201Cm\u00B2\u2026\u201D \u2602\uFE0F", true), "\"m2 \"  \u2602");
}

TEST(QueryFolding, FoldsWordsAlike) {
  for (const char* word :
       {"\uFB01ve", "\uFF46\uFF55\uFF4C\uFF4C", "\u03BF\u03C2", "plain", "caf\u00E9",
        "\u0130\u0131", "\u0643\u064E\u062A\u0640\u0628\u0629", "\u05E9\u05C1\u05B8"}) {
    SCOPED_TRACE(word);
    EXPECT_EQ(FoldedWord(word), FoldedQuery(word, false));
    EXPECT_EQ(FoldedWord(word), FoldedQuery(word, true));
    EXPECT_LE(FoldedWord(word).size(), std::string_view(word).size());
  }
}

// The accent table has no rows for them: it is the search that reads their shapes.
TEST(QueryFolding, ShapesOfArabicLettersAreFoldedAsTheLetters) {
  for (const char* word : {"\uFEE3\uFEAE\uFEA3\uFE92\uFE8E", "\uFEF7", "\uFE94", "\uFB94"}) {
    SCOPED_TRACE(word);
    EXPECT_EQ(FoldedWord(word), FoldedQuery(word, true));
  }
  EXPECT_EQ(FoldedWord("\uFEF7"), "\u0644\u0627");  // lam, and alef without its hamza
}

TEST(QueryFolding, FoldsWordsInLowerCase) {
  std::string word = "\u0130stanbul";
  LowerUtf8(word.data(), word.size());
  EXPECT_EQ(FoldedWord(word), "istanbul");
  EXPECT_EQ(FoldedWord("i\xC2\xB0"), "i\u00B0");  // a degree sign is no rest of a letter
}

TEST(QueryFolding, TheEndingsOfTurkishGoByTheDotlessI) {
  EXPECT_EQ(FoldedWord("kitaplar\u0131", true), "kitaplar\u0131");
  EXPECT_EQ(FoldedWord("\u0130kitaplar\u0131"), "ikitaplari");
  const auto count = std::ranges::count_if(QueryFoldings(false), &IsUnfoldedInTurkish);
  EXPECT_EQ(count, 1);
}

TEST(QueryFolding, BlanksSignsByteForByte) {
  std::string text = "a=b\u2013c.d\u00E9<e..f.\u00E9.g.";
  BlankFoldedSigns(text);
  EXPECT_EQ(text, "a b   c.d\u00E9<e  f \u00E9.g ");
  text = "a_b__c___d.__e__.f__";
  BlankFoldedSigns(text);
  EXPECT_EQ(text, "a_b__c   d.__e  .f  ");
  text = "a-=b-c--\u2013d-";
  BlankFoldedSigns(text);
  EXPECT_EQ(text, "a  b-c     d-");
}

}  // namespace
}  // namespace vela::indexer
