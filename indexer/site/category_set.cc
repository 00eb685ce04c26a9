#include "indexer/site/category_set.h"

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

std::string CategorySet(const std::vector<CategoryRule>& categories, const PageAddresses& page) {
  std::string set(CategoryBytes(categories.size()), '\0');
  for (size_t c = 0; c < categories.size(); ++c) {
    if (!FitsAnyPattern(page, categories[c].pages)) continue;
    set[c / 8] = static_cast<char>(static_cast<unsigned char>(set[c / 8]) | 1U << (c % 8));
  }
  return set;
}

bool HasCategory(std::string_view set, size_t category) {
  const unsigned bits = static_cast<unsigned char>(set[category / 8]);
  return (bits >> (category % 8) & 1U) != 0;
}

}  // namespace vela::indexer
