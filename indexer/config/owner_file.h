// owner_file.h: the files that the site's owner names: configuration, template, language,
// recommended pages.
#pragma once

#include <string>

namespace vela::indexer {

// The content of `path`, which may be a link. Throws IndexError naming `option`.
std::string ReadOwnersFile(const std::string& path, const std::string& option);

}  // namespace vela::indexer
