// results_page_facts.h: what a results page tells of a search, in HTML and XML alike.
#pragma once

#include <cstdint>

#include "output/links.h"
#include "search/filters.h"
#include "search/matches.h"
#include "search/query.h"
#include "search/search_request.h"
#include "search/suggestions.h"
#include "search/term_search.h"
#include "settings/settings.h"

namespace vela {

// A query whose results are shown in the place of what was typed, which finds nothing.
struct ShownCorrection {
  bool isShown = false;
  QueryText typed;  // normalised
  QueryText query;  // corrected
};

// What the page is written from; refers to records that outlive it.
struct ResultsPage {
  const Settings& settings;
  const SearchRequest& request;
  const Query& query;
  const LinkParameters& links;
  const Matches& matches;
  const PageFilters& filters;
  const SkippedTerms& skipped;
  const Suggestions& suggestions;
  const ShownCorrection& correction;
};

inline bool ShowsCategorySummary(const ResultsPage& page) {
  return page.filters.countsCategories && page.matches.resultCount != 0;
}

// Calls `visit(name)` for each selected category that the settings name.
template <typename Visit>
void ForEachSelectedCategory(const Settings& settings, const SearchRequest& request, Visit visit) {
  for (int32_t category : request.categories) {
    if (category >= 0 && category < settings.categoryNames.size()) {
      visit(settings.categoryNames.At(category));
    }
  }
}

}  // namespace vela
