// content_counts.h: what came, on all pages, of what the owner says about their content.
#pragma once

#include <cstdint>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/extract/page.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

struct ContentCounts {
  uint64_t excluded = 0;        // elements, and stretches between remarks
  uint64_t excludingPages = 0;  // pages that have such
  uint64_t chosenPages = 0;     // of which only chosen elements are in the index
  std::vector<bool> usedRules;  // beside SiteConfig::contentRules
  std::vector<bool> usedSelectors;
};

void CountContent(const ContentUse& page, ContentCounts& counts);

// The rules that hold for no page, and the selectors that fit nothing on any.
std::vector<Finding> UnusedContentRules(const SiteConfig& config, const ContentCounts& counts);

}  // namespace vela::indexer
