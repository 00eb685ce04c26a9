// explain_links.h: where the links of a page lead, and which of their texts count.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "indexer/extract/page_anchors.h"
#include "indexer/extract/reading_notes.h"
#include "indexer/report/explanation.h"

namespace vela::indexer {

// So many of the links' texts are `counted` for the pages that they lead to; `base` is the site's
// address, ending in "/".
void ExplainLinks(const PageAnchors& anchors, size_t counted,
                  const std::vector<RefusedLink>& refused, const std::string& base,
                  Explanation& said);

}  // namespace vela::indexer
