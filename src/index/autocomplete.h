// autocomplete.h: the answer to the search box while a visitor types (`vela_autocomplete.vdat`).
//
// A text file, one suggestion a line, in the order in which they are shown. A line is read in
// pieces of at most MaxKeyWordLineLen - 1 bytes, and the last byte of each is dropped: the line
// feed, or, kept so, the last character of a piece without one.
#pragma once

#include <span>
#include <string_view>

#include "output/response.h"
#include "settings/index_directory.h"
#include "settings/settings.h"

namespace vela {

inline constexpr char kAutoCompleteFileName[] = "vela_autocomplete.vdat";

// Whether the text begins with the word, in any case.
bool PrefixMatches(std::string_view text, std::string_view word, bool utf8);

// Writes an item for each suggestion that begins with one of the words, once for each such word.
// False when the file cannot be opened: the message has been written.
[[nodiscard]] bool WriteAutoComplete(Response& response, const IndexDirectory& directory,
                                     const Settings& settings,
                                     std::span<const std::string_view> words);

}  // namespace vela
