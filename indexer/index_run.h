// index_run.h: what every step of a run that makes an index refers to.
#pragma once

#include <csignal>
#include <string>

#include "indexer/config/options.h"
#include "indexer/memory/memory_keeper.h"
#include "indexer/memory/memory_plan.h"
#include "indexer/publish/index_folder.h"
#include "indexer/report/progress.h"
#include "indexer/report/summary.h"
#include "indexer/run_report.h"
#include "indexer/state/merged_parts.h"
#include "indexer/state/page_state.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// A run under way: what the owner wants, and what every step reports to.
struct IndexRun {
  const Options& options;
  const std::string& base;  // the site's address, ending in "/"
  const IndexCharset& charset;
  const IndexFolder& folder;
  Progress& progress;
  const volatile std::sig_atomic_t& stop;
  RunReport& report;
  MemoryPlan memory;
  const MemoryKeeper& keeper;
  PageState* state;          // not owned; null: nothing is kept of the pages
  const MergedParts* parts;  // the same; null: the site is read by this run
  IndexSummary summary;
  bool mayDiffer = false;  // the same site may give another index: some page met a limit of time
};

}  // namespace vela::indexer
