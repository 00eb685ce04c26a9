#include "indexer/collect/recommended_pages.h"

#include <algorithm>

#include "format/page_data.h"
#include "indexer/site/address.h"

namespace vela::indexer {

Recommendation FindRecommended(const RecommendedRule& rule, const CanonicalAddresses& addresses,
                               const std::string& base) {
  Recommendation found = {.rule = rule, .page = std::nullopt, .link = {}};
  const std::string encoded = AsEncoded(rule.address);
  const std::string address = ResolveAddress(base, encoded);
  if (address.empty()) return found;
  const bool isOfSite = IsBelow(address, base);
  if (isOfSite) found.page = addresses.PageAt(InSpellingOf(base, address));
  if (found.page.has_value() || (isOfSite && rule.title.empty())) return found;
  const size_t fragment = std::min(encoded.find('#'), encoded.size());
  found.link = StoredAddress(address + encoded.substr(fragment));
  if (found.link.size() > kAddressLimit) found.link.clear();
  return found;
}

}  // namespace vela::indexer
