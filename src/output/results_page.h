// results_page.h: everything of the results page but the results: sections of the page, or elements
// of the XML document, by the mode of the response.
#pragma once

#include "output/response.h"
#include "output/results_page_facts.h"
#include "output/sections.h"

namespace vela {

// Writes the heading and, on a page, opens the container of the results.
void WriteHeading(Response& response, OutputSections& sections, const Settings& settings,
                  const SearchRequest& request, const Query& query);

// Writes all that stands between the heading and the results.
void WriteResultsHead(Response& response, OutputSections& sections, const ResultsPage& page);

// Writes all that follows the results but the search time.
void WriteResultsFoot(Response& response, OutputSections& sections, const ResultsPage& page);

// Writes how long the search took, in seconds, when the settings want it.
void WriteSearchTime(Response& response, OutputSections& sections, const Settings& settings,
                     double seconds);

}  // namespace vela
