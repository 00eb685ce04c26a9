// config_fingerprints.h: what of the configuration a block depends on, and what besides an index.
#pragma once

#include <string>

#include "indexer/config/site_config.h"
#include "indexer/source/fingerprint.h"

namespace vela::indexer {

struct ConfigFingerprints {
  Fingerprint blocks;
  Fingerprint index;  // of all that the blocks do not depend on
};

ConfigFingerprints FingerprintsOf(const SiteConfig& config);

}  // namespace vela::indexer
