// public_files.h: the files of the index folder that are no index: the template and what the pages
// of the search link to.
#pragma once

#include <string>

#include "indexer/index_charset.h"
#include "indexer/index_folder.h"
#include "indexer/site_config.h"

namespace vela::indexer {

// Writes search_template.html. `name` is the one that the owner gave (see LoadTemplate); empty: the
// one that the index has is kept, and a first index gets the default.
void WriteTemplate(const std::string& name, const std::string& language,
                   const IndexCharset& charset, const IndexFolder& folder);

// Writes the styles, scripts and style sheets that come with the program, always anew, and
// vela_opensearch.xml when the address of the search is known. Makes the folder of the search log
// when searches are logged and it is not there.
void WritePublicFiles(const SiteConfig& config, bool suggestions, const IndexCharset& charset,
                      const IndexFolder& folder);

}  // namespace vela::indexer
