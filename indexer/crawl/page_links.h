// page_links.h: the links on a page that a crawl follows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

inline constexpr size_t kLinkLimit = 10000;  // of one page

// The links of `html` (UTF-8): of a, area, frame, iframe, of link elements that lead to pages
// (next, prev, canonical, alternate) and of a refresh, each resolved against the base of the page,
// which is at `address`, in the page's order. Left out are those that say nofollow, and all of a
// page that does. Ends early when `budget` does.
std::vector<std::string> LinksOf(std::string_view html, std::string_view address,
                                 ReadingBudget& budget);

}  // namespace vela::indexer
