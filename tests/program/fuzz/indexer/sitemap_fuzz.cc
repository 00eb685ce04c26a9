// sitemap_fuzz.cc: what a sitemap lists. Input: the sitemap, packed or not.
#include "indexer/crawl/sitemap.h"
#include "indexer/crawl/web_address.h"
#include "program/fuzz/check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  const std::string_view bytes = fuzz::Text(data, size);
  indexer::Sitemap sitemap;
  indexer::Sitemap again;
  const bool isWhole = indexer::ReadSitemap(bytes, sitemap);
  VELA_CHECK(isWhole == indexer::ReadSitemap(bytes, again));
  VELA_CHECK(sitemap.pages == again.pages && sitemap.sitemaps == again.sitemaps);
  VELA_CHECK(sitemap.pages.size() <= indexer::kSitemapAddressLimit);
  for (const std::string& page : sitemap.pages) {
    VELA_CHECK(!page.empty());
    // An address in its form is read as that form.
    const auto read = indexer::ReadWebAddress(page);
    if (!read.has_value()) continue;
    const auto twice = indexer::ReadWebAddress(read->address);
    VELA_CHECK(twice.has_value() && twice->address == read->address);
    VELA_CHECK(read->address == read->origin + read->path && read->path.starts_with('/'));
  }
  return 0;
}
