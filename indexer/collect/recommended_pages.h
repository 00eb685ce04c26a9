// recommended_pages.h: which pages the owner recommends.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "indexer/config/site_config.h"
#include "indexer/site/canonical_addresses.h"

namespace vela::indexer {

// The page that stands for the address of the rule, which is whole or from `base` on, the site's
// address; none when no page of the index does. `addresses` know all pages.
std::optional<uint32_t> RecommendedPage(const RecommendedRule& rule,
                                        const CanonicalAddresses& addresses,
                                        const std::string& base);

}  // namespace vela::indexer
