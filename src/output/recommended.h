// recommended.h: the pages that the site owner recommends for a query.
#pragma once

#include <cstdint>
#include <string_view>

#include "index/index_files.h"
#include "output/links.h"
#include "output/response.h"
#include "output/sections.h"
#include "search/highlight_terms.h"
#include "search/query.h"
#include "settings/settings.h"

namespace vela {

// What the links are made from; refers to records that outlive it.
struct RecommendedInput {
  const Settings& settings;
  const Query& query;  // its terms as listed: with "-" and asterisks
  std::string_view encodedQuery;
  const IndexFiles& files;
  const HighlightTerms& highlight;
};

// Whether a keyword belongs to the query: it equals a term or the whole query, fits a term that is
// a pattern, or is a pattern that fits a term.
bool MatchesKeyword(const RecommendedInput& input, std::string_view keyword);

// Writes the links whose keywords belong to the query, in file order, at most RecommendedMax.
// `shown` counts them. False when the page data of one cannot be read: the message has been
// written, and the request must be ended.
[[nodiscard]] bool WriteRecommended(Response& response, OutputSections& sections,
                                    const RecommendedInput& input, int32_t& shown);

}  // namespace vela
