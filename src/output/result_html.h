// result_html.h: the block of one result on the page.
#pragma once

#include "output/result_facts.h"
#include "output/sections.h"

namespace vela {

// Appends the block to the results. kInvalidCategory: the title stands there without its end.
[[nodiscard]] BlockStatus AppendResultHtml(OutputSections& sections, const ResultBlocks& blocks,
                                           const Result& result);

}  // namespace vela
