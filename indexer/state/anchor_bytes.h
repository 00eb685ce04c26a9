// anchor_bytes.h: the links and places of a page as bytes, for the check of links in later runs.
//
// A list of texts (text_list.h). The first is the number of places; then come the places, then
// address, fragment and text of each link.
#pragma once

#include <string>
#include <string_view>

#include "indexer/extract/page_anchors.h"

namespace vela::indexer {

std::string AnchorBytes(const PageAnchors& anchors);

// False when `bytes` are not what AnchorBytes makes; `anchors` is then empty.
[[nodiscard]] bool ReadAnchors(std::string_view bytes, PageAnchors& anchors);

}  // namespace vela::indexer
