// wildcard.h: patterns with "*" (any run) and "?" (any one byte).
#pragma once

#include <string_view>

namespace vela {

// Whether the whole of `text` fits `pattern`. With `foldCase` the ASCII letters of both sides
// compare as lower case. Linear space, at most |text| * |pattern| steps.
bool MatchesWildcard(std::string_view text, std::string_view pattern, bool foldCase);

// Whether `term` is a pattern: it holds "*" or "?".
constexpr bool HasWildcard(std::string_view term) { return term.find_first_of("*?") != term.npos; }

}  // namespace vela
