// sitemap.h: the addresses that a sitemap lists.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

inline constexpr size_t kSitemapBytesLimit = size_t{50} << 20;  // unpacked
inline constexpr size_t kSitemapAddressLimit = 50000;

struct Sitemap {
  std::vector<std::string> pages;     // as they are written
  std::vector<std::string> sitemaps;  // further ones, when it is an index of such
};

// Reads a sitemap or an index of sitemaps, in XML or as lines of text, also in the form of gzip,
// within the limits above. False when it is damaged; `sitemap` holds what stands before the damage.
// No document type is accepted and nothing outside of it is read. Throws std::bad_alloc when there
// is no memory.
[[nodiscard]] bool ReadSitemap(std::string_view bytes, Sitemap& sitemap);

}  // namespace vela::indexer
