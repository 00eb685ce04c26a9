// target_url.h: where the links of a result lead, and how they open.
#pragma once

#include <string_view>

#include "output/links.h"
#include "settings/settings.h"
#include "text/fixed_text.h"

namespace vela {

// The page's address, with the query in it when the settings want the page to highlight its words.
// `encodedQuery` is the URL-encoded query, `query` the normalised one.
LinkText ResultTarget(const Settings& settings, std::string_view url, std::string_view encodedQuery,
                      std::string_view query);

// The same for a recommended link, whose address keeps its fragment at the end.
LinkText RecommendedTarget(const Settings& settings, std::string_view url,
                           std::string_view encodedQuery, std::string_view query);

// The target attribute that the settings give every link; empty for none.
using LinkAttribute = FixedText<2200>;
LinkAttribute ConfiguredLinkAttribute(const Settings& settings);

}  // namespace vela
