// markup_limits.h: which pages the HTML parser, which has no limits of its own, must not see.
#pragma once

#include <string_view>

#include "indexer/report/reason.h"

namespace vela::indexer {

// kMarkupTooDeep, kMarkupTooLarge: the markup would keep the parser busy without end, as it nests
// too deep or a tag has too many attributes. kNone: it may be parsed. Takes time in proportion to
// the page.
[[nodiscard]] Reason CheckMarkup(std::string_view html);

}  // namespace vela::indexer
