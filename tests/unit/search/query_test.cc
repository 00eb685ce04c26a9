#include "search/query.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::Repeat;

using Terms = std::vector<std::string>;

std::string Normalised(const std::string& text, const Settings& settings) {
  QueryText query;
  Set(query, text);
  NormaliseQuery(query, settings);
  return std::string(View(query));
}

std::string Normalised(const std::string& text, const std::string& joinChars,
                       int32_t allowExactPhrase = 1) {
  Settings settings;
  settings.AllowExactPhrase = allowExactPhrase;
  Set(settings.WordJoinChars, joinChars);
  return Normalised(text, settings);
}

struct Split {
  Terms terms;
  bool hasPhrase;
};

Split SplitText(const std::string& text) {
  TermList list;
  Split split = {{}, false};
  EXPECT_TRUE(SplitQuery(text, list, split.hasPhrase));
  for (int32_t i = 0; i < list.size(); ++i) split.terms.emplace_back(list[i]);
  return split;
}

Terms Parsed(const std::string& text, const std::string& joinChars = "",
             int32_t allowExactPhrase = 1) {
  Settings settings;
  settings.AllowExactPhrase = allowExactPhrase;
  Set(settings.WordJoinChars, joinChars);
  Query query;
  Set(query.typed, text);
  EXPECT_TRUE(ParseQuery(query, settings));
  Terms terms;
  for (int32_t i = 0; i < query.terms.size(); ++i) terms.emplace_back(query.terms[i]);
  return terms;
}

TEST(Query, PlusPlusAndExclusionAndHyphen) {
  EXPECT_EQ(Parsed("g++ -cats e-mail"), (Terms{"g++", "e", "mail", "-cats"}));
}

TEST(Query, SitePrefixSurvivesWhereAnotherColonIsABlank) {
  EXPECT_EQ(Normalised("site:example time:now", ""), "site:example time now");
}

TEST(Query, QuotedPhraseIsOneTermWithABlank) {
  EXPECT_EQ(Parsed("\"red oak\""), (Terms{"red oak"}));
}

TEST(Query, OnlySpacesYieldNoTerms) {
  EXPECT_EQ(Normalised("   ", ""), "");
  EXPECT_EQ(Parsed("   "), Terms{});
}

TEST(Query, TrailingCommaOrFullStopIsRemoved) {
  for (const char* joinChars : {"", ".,"}) {
    SCOPED_TRACE(joinChars);
    EXPECT_EQ(Parsed("oak,", joinChars), (Terms{"oak"}));
    EXPECT_EQ(Parsed("oak.", joinChars), (Terms{"oak"}));
  }
}

TEST(NormaliseQuery, Table) {
  const struct {
    const char* what;
    const char* text;
    const char* joinChars;
    const char* expected;
  } cases[] = {
      {"plain words", "red oak", "", "red oak"},
      {"an empty text", "", "", ""},
      {"blanks, tabs and line ends are trimmed", " \t\r\nred oak \t\r\n", "", "red oak"},
      {"blanks between words stay", "red   oak", "", "red   oak"},
      {"a tab between words stays", "red\toak", "", "red\toak"},

      {"full stop inside", "v1.2", "", "v1 2"},
      {"full stop that joins", "v1.2", ".", "v1.2"},
      {"full stop that joins, at a word's end", "end. next", ".", "end next"},
      {"full stop that joins, at the start", ".net", ".", ".net"},
      {"of two full stops at a word's end one is left", "a.. b", ".", "a. b"},
      {"of two full stops at the end one is left", "a..", ".", "a."},

      {"hyphen inside", "e-mail", "", "e mail"},
      {"hyphen that joins", "e-mail", "-", "e-mail"},
      {"hyphen at the start", "-cats", "", "-cats"},
      {"hyphen behind a blank", "dogs -cats", "", "dogs -cats"},
      {"hyphen at a word's end", "dogs- cats", "", "dogs  cats"},
      {"of two hyphens at the start the second goes", "--cats", "", "- cats"},
      {"three hyphens", "---x", "", "- -x"},
      {"a hyphen alone", "dogs - cats", "", "dogs - cats"},
      {"a hyphen behind a quote", "\"-a\"", "", "\" a\""},
      {"a hyphen behind a full stop that became a blank", "a.-b", "", "a -b"},
      {"a hyphen behind a sign that is replaced later", "a,-b", "", "a  b"},

      {"hash at the end", "c#", "", "c#"},
      {"hash at a word's end", "c# and f#", "", "c# and f#"},
      {"hash inside", "a#b", "", "a b"},
      {"hash at the start", "#tag", "", "tag"},
      {"of two hashes at the end the first goes", "c##", "", "c #"},
      {"hash before a plus", "c#+", "", "c"},
      {"hash that joins", "a#b", "#", "a#b"},

      {"plus signs at a word's end", "c++ x", "", "c++ x"},
      {"plus signs at the end", "c++", "", "c++"},
      {"three plus signs", "c+++", "", "c+++"},
      {"one plus sign at the end", "c+", "", "c"},
      {"one plus sign at a word's end", "c+ x", "", "c  x"},
      {"plus sign inside", "a+b", "", "a b"},
      {"two plus signs inside", "a++b", "", "a  b"},
      {"plus sign before a word", "+oak", "", "oak"},
      {"two plus signs alone", "++", "", "++"},
      {"a plus sign alone", "+", "", ""},
      {"plus sign that joins", "a+b", "+", "a+b"},

      {"underscore", "a_b", "", "a b"},
      {"underscore that joins", "a_b", "_", "a_b"},
      {"apostrophe", "don't", "", "don t"},
      {"apostrophe that joins", "don't", "'", "don't"},
      {"apostrophe that joins, at a word's end", "dogs' cats", "'", "dogs cats"},
      {"dollar", "a$b", "", "a b"},
      {"dollar that joins, at the end", "us$", "$", "us"},
      {"comma", "a,b", "", "a b"},
      {"comma and blank", "red, oak", "", "red  oak"},
      {"comma that joins, before a blank", "red, oak", ",", "red oak"},

      {"colon", "a:b", "", "a b"},
      {"colon that joins", "a:b", ":", "a:b"},
      {"colon that joins, at a word's end", "a: b", ":", "a b"},
      {"site prefix", "site:docs", "", "site:docs"},
      {"url prefix", "url:docs", "", "url:docs"},
      {"prefix inside a word", "mysite:docs", "", "mysite:docs"},
      {"two prefixes", "site:a url:b c:d", "", "site:a url:b c d"},
      {"a prefix and its blank", "site: docs", "", "site docs"},
      {"a prefix alone", "site:", "", "site"},
      {"a prefix in upper case is none", "SITE:docs", "", "SITE docs"},
      {"a second colon behind a prefix", "site:a:b", "", "site:a b"},
      {"an address behind a prefix", "site:http://a.b/c", "", "site:http   a b c"},
      {"an excluded restriction", "-site:docs", "", "-site:docs"},

      {"the marker of a prefix, of which the hash goes first", "[#@!]docs", "", "docs"},
      {"the marker of a prefix where hashes join", "[#@!]docs", "#", "site:docs"},
      {"the other marker where hashes join", "[#@]docs", "#", "url:docs"},
      {"a marker before a blank where hashes join", "[#@!] x", "#", "site x"},
      {"the marker where colons join, too", "[#@!]docs", "#:", "#   docs"},

      {"ampersand", "a&b", "", "a b"},
      {"ampersand that joins", "at&t", "&", "at&t"},
      {"slash", "a/b", "", "a b"},
      {"slash that joins", "a/b", "/", "a/b"},
      {"backslash", "a\\b", "", "a b"},
      {"backslash that joins, at a word's end", "a\\ b", "\\", "a b"},
      {"at sign", "me@home", "", "me home"},
      {"at sign that joins", "me@home", "@", "me@home"},
      {"at sign that joins, at the end", "me@", "@", "me@"},

      {"brackets", "(a)^[b]|{c}%d!", "", "a   b   c  d"},
      {"brackets never join", "(a)b!c", "()!", "a b c"},
      {"wildcards stay", "c?t ca*", "", "c?t ca*"},
      {"quotes stay", "\"red oak\"", "", "\"red oak\""},
      {"other signs stay", "a;b<c>=~`", "", "a;b<c>=~`"},

      {"pairs at a word's end go in their order", "a._ b", "._", "a b"},
      {"pairs against their order", "a_. b", "._", "a_ b"},
      {"only one sign is dropped at the end", "a,.", ".,", "a,"},
      {"a join sign alone", ".", ".", ""},
      {"the sign behind the blanks at the end stays behind one", "a . ", ".", "a"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Normalised(c.text, c.joinChars), c.expected);
  }
}

TEST(NormaliseQuery, QuotesAreBlanksWithoutPhrases) {
  EXPECT_EQ(Normalised("\"red oak\"", "", 0), "red oak");
  EXPECT_EQ(Normalised("a\"-b", "", 0), "a -b");  // the hyphen now stands behind a blank
  EXPECT_EQ(Normalised("\"red oak\"", "", 2), "\"red oak\"");
}

TEST(NormaliseQuery, LowerCase) {
  Settings settings;
  settings.ToLowerSearchWords = 1;
  EXPECT_EQ(Normalised("RED Oak", settings), "red oak");
  EXPECT_EQ(Normalised("SITE:Docs", settings), "site:docs");
  EXPECT_EQ(Normalised("\xC9T\xC9", settings), "\xC9t\xC9");  // one byte a character: ASCII only
  settings.UseUTF8 = 1;
  EXPECT_EQ(Normalised("\xC3\x89T\xC3\x89", settings), "\xC3\xA9t\xC3\xA9");
  settings.ToLowerSearchWords = 0;
  EXPECT_EQ(Normalised("RED Oak", settings), "RED Oak");
  settings.ToLowerSearchWords = 2;
  EXPECT_EQ(Normalised("RED Oak", settings), "RED Oak");
}

void DefineAccents(Settings& settings,
                   const std::vector<std::pair<std::string, std::string>>& pairs) {
  settings.MapAccents = 1;
  settings.hasAccentTable = true;
  ASSERT_TRUE(settings.accents.TryAllocate(pairs.size()));
  for (size_t i = 0; i < pairs.size(); ++i) {
    Set(settings.accents[i].accent, pairs[i].first);
    Set(settings.accents[i].normal, pairs[i].second);
  }
}

TEST(NormaliseQuery, Accents) {
  Settings settings;
  DefineAccents(
      settings,
      {{"\xC3\xA9", "e"}, {"\xC3\x9F", "ss"}, {"x", "y"}, {"y", "z"}, {"", "!"}, {"q", ""}});
  EXPECT_EQ(Normalised("\xC3\xA9t\xC3\xA9", settings), "ete");
  EXPECT_EQ(Normalised("stra\xC3\x9F"
                       "e",
                       settings),
            "strasse");
  EXPECT_EQ(Normalised("xy", settings), "zz");   // one pair after the other
  EXPECT_EQ(Normalised("aqb", settings), "ab");  // an empty partner
  settings.MapAccents = 0;
  EXPECT_EQ(Normalised("\xC3\xA9", settings), "\xC3\xA9");
  settings.MapAccents = 2;
  EXPECT_EQ(Normalised("\xC3\xA9", settings), "\xC3\xA9");
}

TEST(NormaliseQuery, AccentsComeBeforeLowerCase) {
  Settings settings;
  settings.ToLowerSearchWords = 1;
  DefineAccents(settings, {{"\xC3\x89", "E"}});
  EXPECT_EQ(Normalised("\xC3\x89", settings), "e");
}

TEST(NormaliseQuery, ReplacementThatPasses2085BytesIsNotMade) {
  Settings settings;
  DefineAccents(settings, {{"\xDF", "ss"}, {"a", "bb"}});
  const std::string tail = Repeat("x", 2083);
  EXPECT_EQ(Normalised("\xDF" + tail, settings), "ss" + tail);  // 2085
  EXPECT_EQ(Normalised("\xDF"
                       "x" +
                           tail,
                       settings),
            "\xDF"
            "x" +
                tail);  // would be 2086
  // A pair that does not fit does not stop the pairs behind it from being tried.
  EXPECT_EQ(Normalised("\xDF\xDF"
                       "a" +
                           Repeat("x", 2081),
                       settings),
            "\xDF\xDF"
            "bb" +
                Repeat("x", 2081));
}

TEST(NormaliseQuery, FullBuffer) {
  const std::string full = Repeat("x", 2085);
  EXPECT_EQ(Normalised(full, ""), full);
  EXPECT_EQ(Normalised(full + "y", ""), full);  // cut before
  EXPECT_EQ(Normalised(Repeat("-", 2085), ""), Repeat("- ", 1042) + "-");
  EXPECT_EQ(Normalised(Repeat(".", 2085), ""), "");
}

TEST(SplitQuery, Table) {
  const struct {
    const char* what;
    const char* text;
    Terms terms;
    bool hasPhrase;
  } cases[] = {
      {"nothing", "", {}, false},
      {"one word", "oak", {"oak"}, false},
      {"two words", "red oak", {"red", "oak"}, false},
      {"runs of blanks make no empty terms", "red   oak", {"red", "oak"}, false},
      {"a tab is part of a term", "red\toak", {"red\toak"}, false},
      {"a phrase", "\"red oak\"", {"red oak"}, true},
      {"a phrase between words", "a \"red oak\" b", {"a", "red oak", "b"}, true},
      {"a phrase of one word", "\"oak\"", {"oak"}, true},
      {"a phrase that is not closed", "a \"red oak", {"a", "red oak"}, true},
      {"blanks inside quotes stay", "\" red  oak \"", {" red  oak "}, true},
      {"a phrase begins inside a word, which is lost", "foo\"red oak\"", {"red oak"}, true},
      {"a word goes on behind a phrase", "\"red oak\"foo", {"red oakfoo"}, true},
      {"one phrase behind the other without a blank", "\"a b\"\"c d\"", {"c d"}, true},
      {"two phrases", "\"a b\" \"c d\"", {"a b", "c d"}, true},
      {"a quoted exclusion", "-\"red oak\"", {"-red oak"}, true},
      {"a word and a quoted exclusion", "a -\"red oak\"", {"a", "-red oak"}, true},
      {"quotes around an exclusion", "\"-oak\" a", {"a", "-oak"}, true},
      {"empty quotes alone", "\"\"", {""}, true},
      {"empty quotes at the end", "a \"\"", {"a", ""}, true},
      {"empty quotes at the start", "\"\" a", {"a"}, true},
      {"empty quotes between words", "a \"\" b", {"a", "b"}, true},
      {"empty quotes behind a word", "a\"\"", {""}, true},
      {"a lone quote", "\"", {""}, true},
      {"a lone quote at the end", "a \"", {"a", ""}, true},
      {"a blank in quotes", "\" \"", {" "}, true},
      {"three quotes", "\"a\"\"b c", {"b c"}, true},
      {"exclusions go to the end", "-a b", {"b", "-a"}, false},
      {"the order inside both groups stays",
       "-a b -c d -e f",
       {"b", "d", "f", "-a", "-c", "-e"},
       false},
      {"a lone hyphen is an exclusion", "a - b", {"a", "b", "-"}, false},
      {"only exclusions", "-b -a", {"-b", "-a"}, false},
      {"a hyphen inside a term moves nothing", "b-b a", {"b-b", "a"}, false},
      {"an empty term and an exclusion", "-a \"\"", {"", "-a"}, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const Split split = SplitText(c.text);
    EXPECT_EQ(split.terms, c.terms);
    EXPECT_EQ(split.hasPhrase, c.hasPhrase);
  }
}

TEST(SplitQuery, LongTexts) {
  EXPECT_EQ(SplitText(Repeat("x", 2085)).terms, (Terms{Repeat("x", 2085)}));
  EXPECT_EQ(SplitText(Repeat("a ", 1042) + "a").terms, Terms(1043, "a"));
  EXPECT_EQ(SplitText(Repeat("\"", 2085)).terms, Terms{""});
  EXPECT_EQ(SplitText("\"" + Repeat("x ", 1042)).terms, (Terms{Repeat("x ", 1042)}));
}

TEST(SplitQuery, TermsAreTerminated) {
  TermList list;
  bool hasPhrase = false;
  ASSERT_TRUE(SplitQuery("red \"old oak\" -b", list, hasPhrase));
  for (int32_t i = 0; i < list.size(); ++i) EXPECT_EQ(list[i].data()[list[i].size()], '\0');
}

TEST(SplitQuery, FailedAllocations) {
  int32_t failures = 0;
  bool split = false;
  while (!split && failures < 100) {
    TermList list;
    bool hasPhrase = false;
    g_failAllocationNumber = failures + 1;
    split = SplitQuery("-a b", list, hasPhrase);
    g_failAllocationNumber = 0;
    if (!split) ++failures;
  }
  EXPECT_TRUE(split);
  EXPECT_GT(failures, 0);
}

TEST(ParseQuery, Table) {
  const struct {
    const char* what;
    const char* text;
    const char* joinChars;
    int32_t allowExactPhrase;
    Terms terms;
  } cases[] = {
      {"quotes group without phrases being searched", "\"red oak\"", "", 2, {"red oak"}},
      {"quotes are blanks", "\"red oak\" a", "", 0, {"red", "oak", "a"}},
      {"a hyphen inside a phrase", "\"e-mail\"", "", 1, {"e mail"}},
      {"an exclusion inside a phrase", "\"red -oak\"", "", 1, {"red -oak"}},
      {"double hyphen", "--cats", "", 1, {"cats", "-"}},
      {"restrictions", "site:docs oak -url:old", "", 1, {"site:docs", "oak", "-url:old"}},
      {"only signs", "(,)", "", 1, {}},
      {"a phrase of signs", "\"()\"", "", 1, {"  "}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Parsed(c.text, c.joinChars, c.allowExactPhrase), c.terms);
  }
}

TEST(SubstringTerm, Table) {
  Settings settings;
  settings.AllowExactPhrase = 1;
  const struct {
    const char* what;
    const char* term;
    const char* expected;
  } cases[] = {
      {"a word", "art", "*art*"},
      {"an asterisk in front", "*art", "*art*"},
      {"an asterisk behind", "art*", "*art*"},
      {"both", "*art*", "*art*"},
      {"an asterisk inside", "a*t", "*a*t*"},
      {"a question mark", "?rt", "*?rt*"},
      {"an exclusion", "-art", "-*art*"},
      {"an exclusion with an asterisk", "-*art", "-*art*"},
      {"a phrase", "red oak", "red oak"},
      {"an excluded phrase", "-red oak", "-red oak"},
      {"a restriction to a site", "site:docs", "site:docs"},
      {"a restriction to an address", "url:docs", "url:docs"},
      {"an excluded restriction", "-site:docs", "-site:docs"},
      {"a prefix inside a word", "mysite:docs", "*mysite:docs*"},
      {"an empty term", "", ""},
      {"a lone hyphen", "-", "-"},
      {"a lone asterisk", "*", "*"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(View(SubstringTerm(c.term, settings)), c.expected);
  }
}

// Where quotes only group words, what they hold is a term like any other.
TEST(SubstringTerm, GroupedWordsWithoutPhrases) {
  Settings settings;
  settings.AllowExactPhrase = 2;
  EXPECT_EQ(View(SubstringTerm("red oak", settings)), "*red oak*");
  EXPECT_EQ(View(SubstringTerm("-red oak", settings)), "-*red oak*");
}

TEST(SubstringTerm, FullTerm) {
  const Settings settings;
  EXPECT_EQ(View(SubstringTerm(Repeat("x", 2083), settings)), "*" + Repeat("x", 2083) + "*");
  EXPECT_EQ(View(SubstringTerm(Repeat("x", 2085), settings)).size(), 2085u);
}

TEST(SiteRestriction, Table) {
  const struct {
    const char* what;
    const char* word;
    bool isRestriction;
    const char* restriction;
  } cases[] = {
      {"site", "site:docs", true, "docs"},    {"url", "url:docs", true, "docs"},
      {"empty", "site:", true, ""},           {"a second colon", "url:a:b", true, "a:b"},
      {"upper case", "Site:docs", false, ""}, {"inside a word", "mysite:docs", false, ""},
      {"no colon", "site", false, ""},        {"an empty word", "", false, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const SiteRestriction restriction = ReadSiteRestriction(c.word);
    EXPECT_EQ(restriction.active, c.isRestriction);
    EXPECT_EQ(restriction.text, c.restriction);
  }
}

TermList TermsOf(const std::string& query) {
  TermList terms;
  bool hasPhrase = false;
  EXPECT_TRUE(SplitQuery(query, terms, hasPhrase));
  return terms;
}

TEST(AddSubstringAsterisks, Table) {
  const struct {
    const char* what;
    int32_t substring;
    const char* query;
    std::vector<std::string> terms;
  } cases[] = {
      {"not asked for", 0, "red -oak", {"red", "-oak"}},
      {"only 1 asks for it", 2, "red", {"red"}},
      {"words and exclusions", 1, "red -oak", {"*red*", "-*oak*"}},
      {"none where one stands", 1, "re* *ed", {"*re*", "*ed*"}},
      {"none around phrases", 1, "\"red oak\"", {"red oak"}},
      {"none around restrictions", 1, "site:a -url:b", {"site:a", "-url:b"}},
      {"none around nothing", 1, "red \"\"", {"*red*", ""}},
      {"no terms", 1, "", {}},
      {"the longest term loses its end", 1, nullptr, {"*" + Repeat("x", 2084)}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    settings.SearchAsSubstring = c.substring;
    settings.AllowExactPhrase = 1;
    TermList terms = TermsOf(c.query == nullptr ? Repeat("x", 2085) : c.query);
    ASSERT_TRUE(AddSubstringAsterisks(terms, settings));
    ASSERT_EQ(terms.terms.size(), c.terms.size());
    for (int32_t i = 0; i < terms.size(); ++i) {
      EXPECT_EQ(terms[i], c.terms[static_cast<size_t>(i)]);
      EXPECT_EQ(terms[i].data()[terms[i].size()], '\0');
    }
  }
}

TEST(AddSubstringAsterisks, OutOfMemoryLeavesTheTerms) {
  Settings settings;
  settings.SearchAsSubstring = 1;
  for (int32_t failing : {1, 2}) {
    TermList terms = TermsOf("red oak");
    g_failAllocationNumber = failing;
    EXPECT_FALSE(AddSubstringAsterisks(terms, settings));
    g_failAllocationNumber = 0;
    EXPECT_EQ(terms[0], "red");
  }
}

TEST(Query, ShapesOfArabicLettersAreTheLettersWhereSignsAreCut) {
  Settings settings;
  settings.UseUTF8 = 1;
  const std::string typed = "\uFEE3\uFEAE\uFEA3\uFE92\uFE8E";
  EXPECT_EQ(Normalised(typed, settings), typed);
  settings.CutSigns = 1;
  EXPECT_EQ(Normalised(typed, settings), "\u0645\u0631\u062D\u0628\u0627");
  // Two letters for one character: the last one has no room.
  const std::string longest = Repeat("\uFEFC", 695);
  EXPECT_EQ(Normalised(longest, settings), Repeat("\u0644\u0627", 521));
  settings.UseUTF8 = 0;
  EXPECT_EQ(Normalised(typed, settings), typed);
}

}  // namespace
}  // namespace vela
