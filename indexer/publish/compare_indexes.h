// compare_indexes.h: what a new index changes for those who search.
#pragma once

#include <filesystem>

#include "indexer/report/index_changes.h"

namespace vela::indexer {

// Compares the pages of two index folders by their addresses: what is stored of each beside its
// words. Takes 16 bytes of memory, nearly, for a page of either.
IndexChanges CompareIndexes(const std::filesystem::path& former,
                            const std::filesystem::path& fresh);

}  // namespace vela::indexer
