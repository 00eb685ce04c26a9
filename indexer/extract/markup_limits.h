// markup_limits.h: which pages the HTML parser, which has no limits of its own, must not see.
#pragma once

#include <string>
#include <string_view>

namespace vela::indexer {

// The reason why the markup would keep the parser busy without end: it nests too deep, or a tag has
// too many attributes. Empty when it may be parsed. Takes time in proportion to the page.
std::string TooMuchMarkup(std::string_view html);

}  // namespace vela::indexer
