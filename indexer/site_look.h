// site_look.h: what the configuration leaves to the pages, such as the stemming or the name of the
// site, is found by a look at some of them before all are read.
#pragma once

#include <csignal>
#include <string>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/report/summary.h"
#include "indexer/source/source.h"
#include "indexer/state/site_part.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// Reads some pages of the list, the same ones for the same list; none where `config` leaves nothing
// to them. `base` is the site's address, ending in "/". Throws IndexError when `stop` is set.
SiteLook LookAtSite(const Source& source, const ItemList& items, const std::string& base,
                    const volatile std::sig_atomic_t& stop, const SiteConfig& config);

// Completes `config` by what was found, and says in `summary` what that was.
void Settle(const SiteLook& look, const IndexCharset& charset, SiteConfig& config,
            IndexSummary& summary);

}  // namespace vela::indexer
