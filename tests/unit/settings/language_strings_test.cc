// language_strings_test.cc: one line of interface text.

#include "settings/language_strings.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "support/failing_allocation.h"

namespace vela {
namespace {

using namespace std::string_view_literals;

// In the fixed order by which the texts are addressed.
constexpr std::string_view kKeysInOrder[49] = {
    "STR_FORM_SEARCHFOR",
    "STR_FORM_SUBMIT_BUTTON",
    "STR_FORM_RESULTS_PER_PAGE",
    "STR_FORM_CATEGORY",
    "STR_FORM_CATEGORY_ALL",
    "STR_FORM_MATCH",
    "STR_FORM_ANY_SEARCH_WORDS",
    "STR_FORM_ALL_SEARCH_WORDS",
    "STR_NO_QUERY",
    "STR_RESULTS_FOR",
    "STR_RESULTS_IN_ALL_CATEGORIES",
    "STR_RESULTS_IN_CATEGORY",
    "STR_POWEREDBY",
    "STR_NO_RESULTS",
    "STR_RESULT",
    "STR_RESULTS",
    "STR_PHRASE_CONTAINS_COMMON_WORDS",
    "STR_SKIPPED_FOLLOWING_WORDS",
    "STR_SKIPPED_PHRASE",
    "STR_SUMMARY_NO_RESULTS_FOUND",
    "STR_SUMMARY_FOUND_CONTAINING_ALL_TERMS",
    "STR_SUMMARY_FOUND_CONTAINING_SOME_TERMS",
    "STR_SUMMARY_FOUND",
    "STR_PAGES_OF_RESULTS",
    "STR_POSSIBLY_GET_MORE_RESULTS",
    "STR_ANY_OF_TERMS",
    "STR_ALL_CATS",
    "STR_SORTBY_RELEVANCE",
    "STR_SORTEDBY_DATE",
    "STR_SORTEDBY_RELEVANCE",
    "STR_SORTBY_DATE",
    "STR_RESULT_TERMS_MATCHED",
    "STR_RESULT_SCORE",
    "STR_RESULT_URL",
    "STR_RESULT_PAGES",
    "STR_RESULT_PAGES_PREVIOUS",
    "STR_RESULT_PAGES_NEXT",
    "STR_SEARCH_TOOK",
    "STR_SECONDS",
    "STR_DIDYOUMEAN",
    "STR_OR",
    "STR_RECOMMENDED",
    "STR_MAX_RESULTS",
    "STR_MORETHAN",
    "STR_CAT_SUMMARY",
    "STR_SORTEDBY_DATE_ASC",
    "STR_FORM_DATE_FROM",
    "STR_FORM_DATE_TO",
    "STR_FORM_DATE_BUTTON",
};

class LanguageStringsTest : public testing::Test {
 protected:
  void TearDown() override { g_failAllocationNumber = 0; }
  LanguageStrings strings_;
};

TEST_F(LanguageStringsTest, StartsWithoutTexts) {
  EXPECT_EQ(strings_.count, 0);
  for (size_t i = 0; i < 49; ++i) EXPECT_STREQ(Text(strings_, static_cast<Str>(i)), "");
}

TEST_F(LanguageStringsTest, EveryKeyHasItsPlace) {
  static_assert(kLanguageStringCount == 49);
  for (size_t i = 0; i < 49; ++i) {
    SCOPED_TRACE(kKeysInOrder[i]);
    LanguageStrings strings;
    const std::string line = std::string(kKeysInOrder[i]) + " = \"the text\"\n";
    EXPECT_EQ(ReadLanguageString(strings, kKeysInOrder[i], line), LanguageLine::kStored);
    EXPECT_EQ(strings.count, 1);
    for (size_t j = 0; j < 49; ++j) {
      EXPECT_STREQ(Text(strings, static_cast<Str>(j)), i == j ? "the text" : "");
    }
  }
}

TEST_F(LanguageStringsTest, FurtherTextsAreEnglishUntilTheyAreRead) {
  EXPECT_STREQ(Text(strings_, Str::kCorrectedTo),
               "Nothing was found as it was typed. These are the results for");
  EXPECT_STREQ(Text(strings_, Str::kSearchAsTyped), "Search for what was typed:");
  EXPECT_EQ(ReadLanguageString(strings_, "STR_SEARCH_AS_TYPED", "STR_SEARCH_AS_TYPED = \"a\"\n"),
            LanguageLine::kStored);
  EXPECT_STREQ(Text(strings_, Str::kSearchAsTyped), "a");
  EXPECT_STREQ(Text(strings_, Str::kFormDateButton), "");
  EXPECT_EQ(strings_.count, 0);  // a file is complete without them
}

TEST_F(LanguageStringsTest, ThePlacesAreKnownByName) {
  const struct {
    Str place;
    size_t number;
  } cases[] = {
      {Str::kFormSearchFor, 0},
      {Str::kNoQuery, 8},
      {Str::kPoweredBy, 12},
      {Str::kResult, 14},
      {Str::kResults, 15},
      {Str::kSkippedFollowingWords, 17},
      {Str::kSkippedPhrase, 18},
      {Str::kSummaryNoResultsFound, 19},
      {Str::kPossiblyGetMoreResults, 24},
      {Str::kAnyOfTerms, 25},
      {Str::kSortByRelevance, 27},
      {Str::kSortedByDate, 28},
      {Str::kSortedByRelevance, 29},
      {Str::kSortByDate, 30},
      {Str::kSearchTook, 37},
      {Str::kDidYouMean, 39},
      {Str::kMaxResults, 42},
      {Str::kMoreThan, 43},
      {Str::kSortedByDateAsc, 45},
      {Str::kFormDateButton, 48},
  };
  for (const auto& c : cases) EXPECT_EQ(static_cast<size_t>(c.place), c.number);
}

TEST_F(LanguageStringsTest, AKeyOutsideTheListIsIgnored) {
  for (const std::string_view key :
       {"STR_UNKNOWN", "STR_", "STR_ORX", "STR_or", "STR_RESULTSFOR", "STR_OR="}) {
    SCOPED_TRACE(key);
    EXPECT_EQ(ReadLanguageString(strings_, key, std::string(key) + " = \"x\"\n"),
              LanguageLine::kIgnored);
    EXPECT_EQ(strings_.count, 0);
  }
  EXPECT_STREQ(Text(strings_, Str::kOr), "");
}

TEST_F(LanguageStringsTest, FormsOfALine) {
  const struct {
    const char* what;
    std::string_view line;
    std::string_view expected;
  } cases[] = {
      {"plain", "STR_OR = \"or\"\n", "or"},
      {"carriage return", "STR_OR = \"or\"\r\n", "or"},
      {"no line feed", "STR_OR = \"or\"", "or"},
      {"blanks before the key", " \tSTR_OR = \"or\"\n", "or"},
      {"no blank behind the sign", "STR_OR =\"or\"\n", "or"},
      {"tabs and several blanks", "STR_OR\t  =\t \"or\"\n", "or"},
      {"blanks inside the quotes", "STR_OR = \"  or \"\n", "  or "},
      {"up to the second quote", "STR_OR = \"a\" \"b\"\n", "a"},
      {"markup is kept byte for byte", "STR_OR = \"<b>%s</b> &amp; 100%\"\n",
       "<b>%s</b> &amp; 100%"},
      {"without a second quote to the end of the line", "STR_OR = \"or\r\n", "or\r\n"},
      {"empty quotes", "STR_OR = \"\"\n", ""},
      {"no quotes", "STR_OR = or\n", ""},
      {"no sign", "STR_OR \"or\"\n", ""},
      {"nothing behind the key", "STR_OR\n", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    LanguageStrings strings;
    ASSERT_EQ(ReadLanguageString(strings, "STR_OR", "STR_OR = \"before\"\n"),
              LanguageLine::kStored);
    EXPECT_EQ(ReadLanguageString(strings, "STR_OR", c.line), LanguageLine::kStored);
    EXPECT_EQ(Text(strings, Str::kOr), c.expected);
    EXPECT_EQ(strings.count, 2) << "both lines of the key count";
  }
}

TEST_F(LanguageStringsTest, WithoutMemoryNothingIsStored) {
  g_failAllocationNumber = 1;
  EXPECT_EQ(ReadLanguageString(strings_, "STR_OR", "STR_OR = \"or\"\n"), LanguageLine::kNoMemory);
}

}  // namespace
}  // namespace vela
