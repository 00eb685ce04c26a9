#include "indexer/site/address_pattern.h"

#include <algorithm>

#include "indexer/site/address.h"
#include "text/wildcard.h"

namespace vela::indexer {

namespace {

// From its "/" behind the host on.
std::string_view PathOf(std::string_view address) {
  const size_t scheme = address.find("://");
  if (scheme == address.npos) return address;
  const size_t path = address.find('/', scheme + 3);
  return path == address.npos ? std::string_view("/") : address.substr(path);
}

}  // namespace

std::string AddressPattern(std::string_view written) {
  std::string pattern;
  for (const char c : AsEncoded(written)) {
    if (c == '#') {
      pattern += "%23";
    } else {
      pattern += c;
    }
  }
  return pattern;
}

bool FitsAddressPattern(std::string_view address, std::string_view base, std::string_view pattern) {
  if (pattern.find("://") != pattern.npos) return MatchesWildcard(address, pattern, true);
  const std::string_view path = PathOf(address);
  if (pattern.starts_with('/')) return MatchesWildcard(path, pattern, true);
  const std::string_view basePath = PathOf(base);
  return path.starts_with(basePath) && MatchesWildcard(path.substr(basePath.size()), pattern, true);
}

bool FitsAnyPattern(const PageAddresses& page, const std::vector<std::string>& patterns) {
  return std::ranges::any_of(patterns, [&](const std::string& pattern) {
    return std::ranges::any_of(page.all, [&](const std::string& address) {
      return FitsAddressPattern(address, page.base, pattern);
    });
  });
}

}  // namespace vela::indexer
