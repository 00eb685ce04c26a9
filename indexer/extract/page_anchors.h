// page_anchors.h: where the links of a page lead, and the places on it that links may lead to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

struct AnchorLink {
  std::string address;   // whole, without its fragment; empty: the page itself
  std::string fragment;  // without "#", as a link has it; empty for none
  std::string text;      // one line, trimmed, at most kLinkTextLimit bytes; may be empty
};

struct PageAnchors {
  std::vector<AnchorLink> links;    // of a and area elements, in the page's order
  std::vector<std::string> places;  // ids, and names of a elements
};

// Reads `html` (UTF-8) of the page at `address`. Links to other than web pages are left out. Ends
// early when `budget` does.
PageAnchors AnchorsOf(std::string_view html, std::string_view address, ReadingBudget& budget);

}  // namespace vela::indexer
