// autocomplete.h: `vela_autocomplete.vdat`, what is suggested while a visitor types.
//
// A text file, a suggestion a line in the order in which they are shown (keyword_line.h). They are
// put on the page as stored: without markup. A byte is taken off every line, so that the last one
// needs its line feed too.
#pragma once

namespace vela {

inline constexpr char kAutoCompleteFileName[] = "vela_autocomplete.vdat";

}  // namespace vela
