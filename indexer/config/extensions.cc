#include "indexer/config/extensions.h"

#include <algorithm>

#include "indexer/config/setting_keys.h"

namespace vela::indexer {

int32_t ExtensionValue(const SiteConfig& config, std::string_view key) {
  const auto given = config.settings.find(key);
  if (given != config.settings.end()) return given->second.number;
  if (!config.extensions) return 0;
  const auto row = std::ranges::find(ExtensionKeys(), key, &NumberKey::key);
  return row == ExtensionKeys().end() ? 0 : row->value;
}

}  // namespace vela::indexer
