// explain_place.h: whether a page stays behind those that come before it, and what the owner's
// rules make of it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "indexer/collect/page_entry.h"
#include "indexer/config/site_config.h"
#include "indexer/report/explanation.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// The pages before one are compared with it where the site has no more than these.
inline constexpr size_t kComparedPages = 1000;

// What came of a page that has joined those before it.
struct PagePlace {
  Reason reason = Reason::kNone;  // why it does not stay
  PageEntry entry;                // of one that stays
  std::string other;              // the page that it is a copy of; empty for none
  std::string similarTo;    // the page that says nearly the same; empty for none, or not known
  bool isCompared = false;  // the pages before it have joined
  // Of a picture: the texts that the pages have for it.
  std::optional<std::vector<std::string>> alternatives;
};

// `canonical` is the address that the page names. Says what became of the page, too.
void ExplainPlace(const PagePlace& place, const std::string& canonical, const SiteConfig& config,
                  Explanation& said);

}  // namespace vela::indexer
