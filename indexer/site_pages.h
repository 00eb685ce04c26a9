// site_pages.h: the pages of the site as they join the index, in the order of JoiningOrder.
#pragma once

#include <vector>

#include "format/index_directory.h"
#include "indexer/collect/page_collection.h"
#include "indexer/collect/page_entry.h"
#include "indexer/index_run.h"
#include "indexer/source/source.h"
#include "indexer/write/page_table_writer.h"
#include "indexer/write/page_text_writer.h"

namespace vela::indexer {

// The pages of the site, in memory and in the files that are written as they are read.
struct SitePages {
  explicit SitePages(const IndexRun& run)
      : collection({.base = run.base,
                    .config = run.options.config,
                    .charset = run.charset,
                    .memory = run.memory.collection,
                    .sink = [this](const TextStretch& stretch) { text.Add(stretch); }},
                   run.folder.fresh()),
        text(run.folder.fresh()),
        table(run.folder.fresh() / kPageInfoFileName, run.folder.fresh() / kPageDataFileName) {}

  PageCollection collection;
  PageTextWriter text;
  PageTableWriter table;
  PageEntry entry;      // of the page that joined last
  uint64_t number = 0;  // and its number
};

// Reads the pages that `source` has listed into `pages`, and says in the run's report and summary
// what became of each. Throws IndexError.
void ReadPages(const Source& source, SiteListing& listing, IndexRun& run, SitePages& pages);

}  // namespace vela::indexer
