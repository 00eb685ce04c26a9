#include "search/plain_query.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vela {
namespace {

using Terms = std::vector<std::string>;

Query Parsed(const std::string& text, int32_t plainQueries = 1, int32_t cutSigns = 0) {
  Settings settings;
  Set(settings.WordJoinChars, ".-_");
  settings.AllowExactPhrase = 1;
  settings.UseUTF8 = 1;
  settings.PlainQueries = plainQueries;
  settings.CutSigns = cutSigns;
  Query query;
  Set(query.typed, text);
  EXPECT_TRUE(ParseQuery(query, settings));
  return query;
}

Terms TermsOf(const Query& query) { return {query.terms.terms.begin(), query.terms.terms.end()}; }

TEST(PlainQuery, SignsThatAreNotMeantAreDropped) {
  const struct {
    const char *what, *query;
    Terms terms;
  } kCases[] = {
      {"an option", "--force-with-lease", {"force-with-lease"}},
      {"an option behind words", "git push --force", {"git", "push", "force"}},
      {"three hyphens", "---force", {"force"}},
      {"an exclusion", "git -force", {"git", "-force"}},
      {"an excluded phrase", "git -\"a b\"", {"git", "-a b"}},
      {"hyphens at the start of a phrase", "\"--force lease\"", {"force lease"}},
      {"one hyphen at the start of a phrase", "\"-1 error\"", {"1 error"}},
      {"hyphens inside a phrase", "\"push --force -x\"", {"push force x"}},
      {"hyphens at the start of an excluded phrase", "a -\"--force x\"", {"a", "-force x"}},
      {"two hyphens before a quote", "--\"a b\"", {"a b"}},
      {"hyphens inside a word", "e-mail a--b", {"e-mail", "a--b"}},
      {"a hyphen alone", "a - b", {"a", "b"}},
      {"two hyphens alone", "a -- b", {"a", "b"}},
      {"a hyphen at the end", "a -", {"a"}},
      {"only hyphens", "--", {}},
      {"a question mark at the end", "merge?", {"merge"}},
      {"several", "merge???", {"merge"}},
      {"a question", "what is a tuple?", {"what", "is", "a", "tuple"}},
      {"at the end of a word", "tuple? or list", {"tuple", "or", "list"}},
      {"before other signs", "(tuple?), list?!", {"tuple", "list"}},
      {"before a full stop", "tuple?.", {"tuple"}},
      {"behind a full stop", "tuple.?", {"tuple"}},
      {"at the end of a phrase", "\"a tuple?\" b", {"a tuple", "b"}},
      {"inside a word", "t?ple col??r", {"t?ple", "col??r"}},
      {"before a letter beyond ASCII", "caf?\u00E9", {"caf?\u00E9"}},
      {"before an extension", "v?.txt", {"v?.txt"}},
      {"at the start", "?uple", {"?uple"}},
      {"behind an asterisk", "tup*?", {"tup*"}},
      {"alone", "tuple ?", {"tuple"}},
      {"alone behind a hyphen", "tuple -?", {"tuple"}},
      {"nothing but one", "?", {}},
      {"behind plus signs", "c++?", {"c++"}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(TermsOf(Parsed(c.query)), c.terms);
  }
}

TEST(PlainQuery, NothingIsDroppedWithoutTheKey) {
  EXPECT_EQ(TermsOf(Parsed("--force merge?", 0)), (Terms{"merge?", "--force"}));
}

TEST(PlainQuery, GoesTogetherWithTheCutAtSigns) {
  EXPECT_EQ(TermsOf(Parsed("\u201C--force merge?\u201D \u00ABwhat?\u00BB", 1, 1)),
            (Terms{"force merge", "what"}));
}

TEST(PlainQuery, TellsQueriesOfExclusionsAlone) {
  const struct {
    const char *what, *query;
    bool only;
  } kCases[] = {
      {"an exclusion", "-a", true},
      {"two", "-a -\"b c\"", true},
      {"a word as well", "a -b", false},
      {"a restriction", "-site:x", false},
      {"a restriction as well", "-a site:x", true},
      {"behind a restriction", "url:x -a -b", true},
      {"beside a restriction written as an exclusion", "-a -site:x", true},
      {"restrictions alone", "site:x url:y", false},
      {"a word beside both", "-a site:x b", false},
      {"nothing", "", false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(HasOnlyExclusions(Parsed(c.query).terms), c.only);
  }
}

}  // namespace
}  // namespace vela
