// asked_page.h: which page of a site an owner means by an address, a path or a file.
#pragma once

#include <optional>
#include <string>

#include "indexer/config/options.h"
#include "indexer/source/source.h"

namespace vela::indexer {

struct AskedPage {
  std::optional<SourceItem> item;  // none: it is in no list of pages, for `why`
  std::string path;                // as SourceItem has it
  Finding why;
};

// `asked`: a whole address, one from the host on ("/news/"), a path from the site's folder on, or
// of a file that lies in it. `listing` is what `source`, whose address is `base`, lists.
AskedPage FindAskedPage(const std::string& asked, const Options& options, const std::string& base,
                        const Source& source, const SiteListing& listing);

}  // namespace vela::indexer
