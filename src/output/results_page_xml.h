// results_page_xml.h: what the XML document says of a search, around the items of the results.
#pragma once

#include "output/response.h"
#include "output/results_page_facts.h"

namespace vela {

// Writes the query, and the categories that are searched.
void WriteHeadingXml(Response& response, const Settings& settings, const SearchRequest& request,
                     const Query& query);

// Writes all that stands between the heading and the items: counts, category summary, suggestions.
void WriteResultsHeadXml(Response& response, const ResultsPage& page);

// Writes how long the search took, in seconds.
void WriteSearchTimeXml(Response& response, double seconds);

}  // namespace vela
