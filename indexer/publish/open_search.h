// open_search.h: vela_opensearch.xml, by which browsers and feed readers learn how to ask the
// search.
#pragma once

#include <string>

#include "indexer/config/site_config.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

constexpr char kOpenSearchName[] = "vela_opensearch.xml";

// The address of the document: beside the search. `searchAddress` is absolute.
std::string OpenSearchAddress(const std::string& searchAddress);

// The document, in UTF-8: name and description, and the addresses of the search as an HTML page, as
// RSS and, with `suggestions`, as the completion of its box. config.searchAddress must be set.
// `charset` is the one in which the search takes queries.
std::string OpenSearchDocument(const SiteConfig& config, bool suggestions,
                               const IndexCharset& charset);

// Settles what the XML answer says of the search: title, description, address, style sheet and the
// document above, in config.settings where the owner's [settings] do not say it. `siteAddress`
// stands for the search's address while that is not known.
void AddXmlSettings(const std::string& siteAddress, SiteConfig& config);

}  // namespace vela::indexer
