// autocomplete.h: the answer to the search box while a visitor types.
#pragma once

#include <span>
#include <string_view>

#include "index/autocomplete.h"
#include "index/completions.h"
#include "output/response.h"
#include "search/query.h"

namespace vela {

// Writes an item for each suggestion that begins with one of the words, once for each such word.
// Suggestions go out as the file has them: the indexer stores them safe for HTML.
void WriteAutoComplete(Response& response, SuggestionReader& suggestions,
                       std::span<const std::string_view> words, bool utf8);

// Writes an item for each of the first suggestions in which a word begins with each word of `typed`
// (the setting CompleteAnyWord).
void WriteCompletions(Response& response, const Completions& completions, QueryText typed);

}  // namespace vela
