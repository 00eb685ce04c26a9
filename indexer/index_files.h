// index_files.h: the files of the index, once all pages are read.
#pragma once

#include <cstdint>

#include "indexer/index_run.h"
#include "indexer/site_pages.h"
#include "indexer/write/settings_writer.h"

namespace vela::indexer {

// Writes all but the settings, whose facts are those of `facts`, and notes in the run's summary
// what came of the owner's wishes. Returns the size of all. Throws IndexError.
uint64_t WriteIndexFiles(IndexRun& run, SitePages& pages, IndexFacts& facts);

}  // namespace vela::indexer
