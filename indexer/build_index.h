// build_index.h: the whole way from a site's folder to its index. Start reading here.
#pragma once

#include <csignal>
#include <cstdint>
#include <string>

#include "indexer/options.h"
#include "indexer/progress.h"
#include "indexer/site_walk.h"

namespace vela::indexer {

struct IndexSummary {
  uint64_t pages = 0;
  uint64_t words = 0;        // different ones, reserved entries not counted
  uint64_t occurrences = 0;  // words and signs of the page text
  uint64_t sourceBytes = 0;  // of the pages' files
  uint64_t indexBytes = 0;   // of the files written
  uint64_t runs = 0;         // how often the memory for words was full
  SkippedFiles skipped;
};

// Reads the site and puts the index into place. Throws IndexError; the old index is then untouched.
// `stop`, set from outside (a signal), ends the run with ExitStatus::kInterrupted.
IndexSummary BuildIndex(const Options& options, Progress& progress,
                        const volatile std::sig_atomic_t& stop);

// The lines for a person at the end of a run.
std::string SummaryText(const IndexSummary& summary, const Options& options, double seconds);

}  // namespace vela::indexer
