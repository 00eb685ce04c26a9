// results_page_html.h: the sections of the page that tell of a search: heading, summary,
// suggestions, links to other pages and orders.
#pragma once

#include "output/results_page_facts.h"
#include "output/sections.h"

namespace vela {

// Appends the query and the categories searched, and opens the container of the results.
void AppendHeadingHtml(OutputSections& sections, const Settings& settings,
                       const SearchRequest& request, const Query& query);

// Appends all that stands between the heading and the result blocks.
void AppendResultsHeadHtml(OutputSections& sections, const ResultsPage& page);

// Appends all that follows the result blocks but the search time.
void AppendResultsFootHtml(OutputSections& sections, const ResultsPage& page);

// Appends how long the search took, in seconds.
void AppendSearchTimeHtml(OutputSections& sections, const Settings& settings, double seconds);

}  // namespace vela
