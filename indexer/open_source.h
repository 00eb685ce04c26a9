// open_source.h: from what the owner says of where the pages are to the source that has them.
#pragma once

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "indexer/config/options.h"
#include "indexer/passing_folder.h"
#include "indexer/report/progress.h"
#include "indexer/report/reason.h"
#include "indexer/source/source.h"
#include "indexer/state/merged_parts.h"
#include "indexer/state/state_folder.h"

namespace vela::indexer {

struct OpenedSource {
  PassingFolder passing;  // of a source that is to be gone with this
  StateFolder state;      // for what is kept from run to run; without a path where nothing is
  std::unique_ptr<Source> source;
  std::vector<Finding> findings;  // what the owner should know of the way there
  std::string base;               // the site's address, as its pages spell it
};

// Opens the site's folder, or fetches its pages first. `base` is the site's address, ending in "/";
// `indexFolder` is absolute; empty where no index is written. Throws IndexError.
OpenedSource OpenSource(const Options& options, const std::string& base,
                        const std::filesystem::path& indexFolder, Progress& progress,
                        const volatile std::sig_atomic_t& stop);

// The source of a run that reads the site, or of one that merges its parts.
struct SiteSource {
  OpenedSource opened;
  const MergedParts* parts = nullptr;  // opened.source, where it is that
};

// Opens the source of `options`: OpenSource, unless parts are merged.
SiteSource OpenSite(const Options& options, const std::string& base,
                    const std::filesystem::path& indexFolder, Progress& progress,
                    const volatile std::sig_atomic_t& stop);

// As OpenSource, to look at pages: of a crawl, those that the last run fetched; nothing is fetched
// and nothing written, but for what is removed again with the source. Throws IndexError.
OpenedSource OpenKeptSource(const Options& options, const std::string& base,
                            const std::filesystem::path& indexFolder, Progress& progress,
                            const volatile std::sig_atomic_t& stop);

// Why the owner wants no page of that address from the web or an archive; kNone: nothing is against
// it. `base` is the site's address, ending in "/".
Finding WhyUnwanted(const CrawlRules& rules, const std::string& base, const std::string& address);

}  // namespace vela::indexer
