// search_template.h: the template that the site's owner names.
#pragma once

#include <string>

#include "indexer/config/options.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// "default", "minimal" and "embed" are built in; anything else is a file. A built-in template is
// brought into the language of the search page and the character set of the index, and links to
// vela_opensearch.xml only when that is written, for a search whose address is known.
std::string LoadTemplate(const std::string& name, const Options& options,
                         const IndexCharset& charset);

}  // namespace vela::indexer
