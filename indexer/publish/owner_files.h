// owner_files.h: files that the site's owner names: the template, the language, the recommended
// pages. A name that comes with the program stands for a built-in file.
#pragma once

#include <string>

#include "indexer/config/options.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// The content of `path`, which may be a link. Throws IndexError naming `option`.
std::string ReadOwnersFile(const std::string& path, const std::string& option);

// The lines of a built-in language ("german") or of a .vlang file; see CheckedLanguage.
std::string LoadLanguage(const std::string& language);

// "default", "minimal" and "embed" are built in; anything else is a file. A built-in template is
// brought into the language of the search page and the character set of the index, and links to
// vela_opensearch.xml only when that is written, for a search whose address is known.
std::string LoadTemplate(const std::string& name, const Options& options,
                         const IndexCharset& charset);

// Whether the name stands for a built-in template.
bool IsBuiltInTemplate(const std::string& name);

}  // namespace vela::indexer
