// context_text.h: the snippet of a result, as text of the page or of the XML document.
#pragma once

#include <string_view>

#include "output/response.h"
#include "output/sections.h"
#include "search/ranking.h"
#include "search/snippets.h"

namespace vela {

// Writes the context element of one result: passages around its matches with the matched words
// marked, or nothing between its tags when the first passage only repeats the title.
void WriteContext(Response& response, OutputSections& sections, const SnippetSource& source,
                  const ResultEntry& entry, std::string_view title);

}  // namespace vela
