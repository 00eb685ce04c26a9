// extensions.h: which extensions of the search the index is made for.
#pragma once

#include <cstdint>
#include <string_view>

#include "indexer/config/site_config.h"

namespace vela::indexer {

// The value of one of ExtensionKeys (setting_keys.h): what the owner says, otherwise its own unless
// all are off. 0: the extension is off.
int32_t ExtensionValue(const SiteConfig& config, std::string_view key);

}  // namespace vela::indexer
