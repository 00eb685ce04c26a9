// term_search.h: working through the terms of a query.
#pragma once

#include <cstdint>
#include <string_view>

#include "index/dictionary.h"
#include "index/page_info.h"
#include "output/response.h"
#include "search/lookup.h"
#include "search/matches.h"
#include "search/phrase.h"
#include "search/query.h"
#include "settings/settings.h"
#include "text/owned_array.h"
#include "text/stemmer.h"

namespace vela {

// One term on its way through the search.
struct SearchedTerm {
  QueryText shown;      // as the list holds it: with its "-", with asterisks
  QueryText word;       // as it is looked up: without "-", stemmed
  int64_t records = 0;  // word-map records read for it
};

// The terms that the search passed over, as the visitor should see them.
struct SkippedTerms {
  OwnedArray<std::string_view> terms;  // room for every term of the query
  int32_t count = 0;
};

// What the terms are searched in; refers to records that outlive it.
struct TermSearchInput {
  const Settings& settings;
  const Dictionary& dictionary;
  const PageTable& pages;
  std::string_view wordMap;
  std::string_view pageText;
  int32_t sort = 0;
  Response& response;
  Stemmer& stemmer;
};

// What is gathered over all terms.
struct TermSearch {
  OwnedArray<SearchedTerm> terms;
  SkippedTerms skipped;
  MatchBudget matchBudget;
  PhraseBudget phraseBudget;
  int32_t skippedCount = 0;   // terms that AND mode does not ask for
  int32_t excludedCount = 0;  // exclusions and site restrictions
  bool hasSiteRestriction = false;
  std::string_view siteRestriction;
  bool siteOnly = false;  // every page is a candidate
};

// Takes the terms of the query over, with the asterisks of a substring search; the query's own
// list is changed along. False when memory is out.
[[nodiscard]] bool StartTermSearch(TermSearch& search, Query& query, const Settings& settings);

enum class TermStatus { kOk, kNoMemory, kSeekFailed, kMissingData, kInvalidPage };

// Looks the terms up one after another and adds what they match to `matches`. A failed seek has
// written its message; the other failures write nothing.
[[nodiscard]] TermStatus SearchTerms(TermSearch& search, const TermSearchInput& input,
                                     Matches& matches);

// Lower-cases the word and reduces it to its stem.
void StemText(QueryText& word, Stemmer& stemmer, bool utf8);

}  // namespace vela
