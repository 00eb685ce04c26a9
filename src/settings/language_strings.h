// language_strings.h: the interface texts of a site, written by the indexer into the settings file
// as lines `STR_KEY = "text"`. Texts may hold markup and are put on the page as they stand.
#pragma once

#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "text/owned_array.h"

namespace vela {

// In the order of kLanguageKeys, then of kFurtherTexts.
enum class Str : uint8_t {
  kFormSearchFor,
  kFormSubmitButton,
  kFormResultsPerPage,
  kFormCategory,
  kFormCategoryAll,
  kFormMatch,
  kFormAnySearchWords,
  kFormAllSearchWords,
  kNoQuery,
  kResultsFor,
  kResultsInAllCategories,
  kResultsInCategory,
  kPoweredBy,
  kNoResults,
  kResult,
  kResults,
  kPhraseContainsCommonWords,
  kSkippedFollowingWords,
  kSkippedPhrase,
  kSummaryNoResultsFound,
  kSummaryFoundContainingAllTerms,
  kSummaryFoundContainingSomeTerms,
  kSummaryFound,
  kPagesOfResults,
  kPossiblyGetMoreResults,
  kAnyOfTerms,
  kAllCats,
  kSortByRelevance,
  kSortedByDate,
  kSortedByRelevance,
  kSortByDate,
  kResultTermsMatched,
  kResultScore,
  kResultUrl,
  kResultPages,
  kResultPagesPrevious,
  kResultPagesNext,
  kSearchTook,
  kSeconds,
  kDidYouMean,
  kOr,
  kRecommended,
  kMaxResults,
  kMoreThan,
  kCatSummary,
  kSortedByDateAsc,
  kFormDateFrom,
  kFormDateTo,
  kFormDateButton,
  kCorrectedTo,
  kSearchAsTyped,
  kOnlyExclusions,
};
inline constexpr size_t kLanguageStringCount = 49;  // those that a file must have

inline constexpr std::array<std::string_view, kLanguageStringCount> kLanguageKeys = {
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

// Texts of extensions. A file need not have them.
struct FurtherText {
  std::string_view key;
  const char* english;  // in the place of one that the file does not have
};
inline constexpr FurtherText kFurtherTexts[] = {
    {"STR_CORRECTED_TO", "Nothing was found as it was typed. These are the results for"},
    {"STR_SEARCH_AS_TYPED", "Search for what was typed:"},
    {"STR_ONLY_EXCLUSIONS",
     "This search only says what to leave out. Please add a word to look for."},
};

struct LanguageStrings {
  // NUL-terminated; none: not read
  std::array<OwnedArray<char>, kLanguageStringCount + std::size(kFurtherTexts)> texts;
  int32_t count = 0;  // lines accepted of the keys a file must have, repeated ones included
};

// The text of a key; where the file had none "", or the English one of kFurtherTexts.
// NUL-terminated.
const char* Text(const LanguageStrings& strings, Str key);

enum class LanguageLine { kStored, kIgnored, kNoMemory };

// Reads one line whose first token, `key`, begins with "STR_". A key that is not in the list is
// ignored; a later line of a key replaces the earlier one, and both count. Kept: a file that
// repeats one key and lacks another is complete by count, and the missing text is empty (golden
// settings/repeated_text_counts).
LanguageLine ReadLanguageString(LanguageStrings& strings, std::string_view key,
                                std::string_view line);

}  // namespace vela
