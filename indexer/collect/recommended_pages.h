// recommended_pages.h: what the owner recommends, among the pages of the index and elsewhere.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "indexer/config/site_config.h"
#include "indexer/site/canonical_addresses.h"

namespace vela::indexer {

// A rule and what it leads to: one of the two, or neither.
struct Recommendation {
  const RecommendedRule& rule;
  std::optional<uint32_t> page;  // of the index
  std::string link;              // an address that is none of a page; as StoredAddress makes it
};

// The page that stands for the rule's address, which is whole or from `base` on, the site's
// address; else the address where it is not one of the site, or the rule gives its title: another
// may be a mistake. `addresses` know all pages, and the rule outlives the result.
Recommendation FindRecommended(const RecommendedRule& rule, const CanonicalAddresses& addresses,
                               const std::string& base);

}  // namespace vela::indexer
