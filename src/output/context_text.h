// context_text.h: the passages around the matches of a result, with the matched words marked.
#pragma once

#include <string_view>

#include "output/response.h"
#include "output/sections.h"
#include "search/ranking.h"
#include "search/snippets.h"

namespace vela {

// Writes the context element of one result: its passages, or nothing between its tags when the
// first one only repeats the title. The words stand there raw, as the dictionary holds them: safe
// for HTML.
void AppendContextHtml(OutputSections& sections, const SnippetSource& source,
                       const ResultEntry& entry, std::string_view title);
// The same at once, as an element of the XML document.
void WriteContextXml(Response& response, const SnippetSource& source, const ResultEntry& entry,
                     std::string_view title);

}  // namespace vela
