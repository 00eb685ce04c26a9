// with_lookup.h: gives an index directory of the tests its lookup file.
#pragma once

#include <filesystem>

namespace vela::support {

// Writes the lookup file of the index in `directory` as the indexer does, and its generation into
// the settings. False, with nothing changed, where the indexer would write none: for a dictionary
// that is missing or damaged, and without settings.
bool AddLookup(const std::filesystem::path& directory);

}  // namespace vela::support
