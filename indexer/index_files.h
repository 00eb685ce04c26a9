// index_files.h: the files of the index, once all pages are read.
#pragma once

#include <cstdint>

#include "indexer/index_run.h"
#include "indexer/site_pages.h"
#include "indexer/write/settings_writer.h"

namespace vela::indexer {

// The files by which words are found. Returns the size of all.
uint64_t WriteWords(IndexRun& run, SitePages& pages, IndexFacts& facts);

// Settles in the page table what is known of pages only when all are read.
void SettlePages(IndexRun& run, SitePages& pages);

// The files that help a visitor beside the words. Returns the size of all.
uint64_t WriteHelp(IndexRun& run, SitePages& pages, IndexFacts& facts);

}  // namespace vela::indexer
