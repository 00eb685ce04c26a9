#include "indexer/collect/recommended_pages.h"

#include "indexer/site/address.h"

namespace vela::indexer {

std::optional<uint32_t> RecommendedPage(const RecommendedRule& rule,
                                        const CanonicalAddresses& addresses,
                                        const std::string& base) {
  const std::string address = ResolveAddress(base, AsEncoded(rule.address));
  if (!IsBelow(address, base)) return std::nullopt;
  return addresses.PageAt(InSpellingOf(base, address));
}

}  // namespace vela::indexer
