// result_block.h: the results on the current page: blocks of the page, items in XML mode.
#pragma once

#include "output/response.h"
#include "output/result_facts.h"
#include "output/sections.h"
#include "search/ranking.h"

namespace vela {

// Writes the results that the requested page shows. After a failure what was already written
// stays; its message is left to the caller.
[[nodiscard]] BlockStatus WriteResultBlocks(Response& response, OutputSections& sections,
                                            const ResultBlocks& blocks, const ResultList& results);

}  // namespace vela
