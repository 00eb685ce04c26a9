// term_search.h: working through the terms of a query.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "index/dictionary.h"
#include "index/lookup_file.h"
#include "index/page_info.h"
#include "search/lookup.h"
#include "search/matches.h"
#include "search/phrase.h"
#include "search/query.h"
#include "settings/settings.h"
#include "text/owned_array.h"
#include "text/stemmer.h"

namespace vela {

struct Alternatives;

// One term on its way through the search.
struct SearchedTerm {
  std::string_view shown;  // as the query lists it: with its "-", with asterisks
  QueryText word;          // as it is looked up: without "-", stemmed
  int64_t records = 0;     // word-map records read for it
  uint32_t mass = 0;       // of a phrase with Ranking: WordMass of its words (run_phrase.h)
};

// The terms that the search passed over, as the query lists them.
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
  const LookupFile& lookup;
  int32_t sort = 0;
  Stemmer& stemmer;
  const Alternatives* alternatives = nullptr;  // of the same terms; null: there are none
  FileStretches* pageTextStretches = nullptr;  // not owned; null: none can be had
  std::string_view query = {};                 // normalised, which the terms were cut from
};

// What is gathered over all terms.
struct TermSearch {
  OwnedArray<SearchedTerm> terms;
  SkippedTerms skipped;
  MatchBudget matchBudget;
  PhraseBudget phraseBudget;
  int32_t skippedCount = 0;              // terms that AND mode does not ask for
  int32_t excludedCount = 0;             // exclusions and site restrictions
  SiteRestriction site;                  // of the last term that is one
  std::span<const DroppedWord> dropped;  // from the query, by place; offers have them, too
};

// Takes the terms over; their list must outlive the search. False when memory is out.
[[nodiscard]] bool StartTermSearch(TermSearch& search, const TermList& terms,
                                   const Settings& settings);

// Whether the query is a single term that only restricts the addresses.
bool IsOnlySiteRestriction(const TermSearch& search);

// Looks the terms up one after another and adds what they match to `matches`.
[[nodiscard]] TermResult SearchTerms(TermSearch& search, const TermSearchInput& input,
                                     Matches& matches);

// Lower-cases the word and reduces it to its stem.
void StemText(QueryText& word, Stemmer& stemmer, bool utf8);

}  // namespace vela
