// results_page.h: everything of the results page but the result blocks: heading, summary,
// suggestions, sorting links, page links. In XML mode the same steps write elements at once.
#pragma once

#include <cstdint>
#include <string_view>

#include "output/links.h"
#include "output/response.h"
#include "output/sections.h"
#include "search/filters.h"
#include "search/matches.h"
#include "search/query.h"
#include "search/search_request.h"
#include "search/suggestions.h"
#include "search/term_search.h"
#include "settings/settings.h"

namespace vela {

// What the page tells of a search. Refers to records that outlive it.
struct ResultsPage {
  const Settings& settings;
  const SearchRequest& request;
  const Query& query;
  const LinkParameters& links;
  const Matches& matches;
  const PageFilters& filters;
  const SkippedTerms& skipped;
  const Suggestions& suggestions;
};

// Writes the heading and opens the container of the results.
void WriteHeading(Response& response, OutputSections& sections, const Settings& settings,
                  const SearchRequest& request, const Query& query);

// Writes all that stands between the heading and the result blocks.
void WriteResultsHead(Response& response, OutputSections& sections, const ResultsPage& page);

// Writes all that follows the result blocks but the search time.
void WriteResultsFoot(Response& response, OutputSections& sections, const ResultsPage& page);

// Writes how long the search took, in seconds, when the settings want it.
void WriteSearchTime(Response& response, OutputSections& sections, const Settings& settings,
                     double seconds);

}  // namespace vela
