// stop_words.h: words that say little of what is searched for ("how", "the"), as StopWords of the
// settings lists them.
#pragma once

#include <string_view>

#include "search/query.h"
#include "settings/settings.h"

namespace vela {

// Takes the stop words out of the terms of a query that holds another word to search for, so that
// they neither find pages nor are asked of them. What the visitor insists on stays: words in quotes
// of their own, exclusions, patterns; and the words of a phrase, which is one term. `text` is the
// query that the terms were cut from. `dropped` is what was taken out; its words are in `settings`.
// False, and the terms as they were, when memory is out.
[[nodiscard]] bool DropStopWords(TermList& terms, std::string_view text, const Settings& settings,
                                 OwnedArray<DroppedWord>& dropped);

}  // namespace vela
