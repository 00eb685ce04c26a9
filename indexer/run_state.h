// run_state.h: what is kept from run to run, and whether it still holds.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "indexer/config/language_file.h"
#include "indexer/config/options.h"
#include "indexer/open_source.h"
#include "indexer/source/fingerprint.h"
#include "indexer/source/source_item.h"
#include "indexer/state/page_state.h"

namespace vela::indexer {

// All that a block depends on beside its page.
Fingerprint BlocksVersion(const Options& options, const std::string& base);

// The files of the new index so far.
std::vector<std::string> FilesIn(const std::filesystem::path& fresh);

// All that an index depends on beside the pages; `fresh` holds the template and the program.
Fingerprint IndexWishes(const Options& options, const std::string& base, const Language& language,
                        const std::filesystem::path& fresh);

// What is kept of the pages, compared with those that are there; null where nothing is kept.
std::unique_ptr<PageState> OpenPageState(const Options& options, const OpenedSource& opened,
                                         const ItemList& items);

}  // namespace vela::indexer
