#include "indexer/build_part.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "indexer/memory/memory_keeper.h"
#include "indexer/memory/memory_plan.h"
#include "indexer/open_source.h"
#include "indexer/page_reading.h"
#include "indexer/report/index_error.h"
#include "indexer/run_conditions.h"
#include "indexer/run_state.h"
#include "indexer/site/address.h"
#include "indexer/site_look.h"
#include "indexer/state/site_part.h"

namespace vela::indexer {

namespace fs = std::filesystem;

IndexSummary BuildPart(const Options& given, Progress& progress,
                       const volatile std::sig_atomic_t& stop) {
  Options options = given;
  const std::optional<PartNumber> part = ReadPartNumber(options.part);
  if (!part.has_value()) {
    throw IndexError(ExitStatus::kUsage,
                     "Give --part as in --part 2/7: the second of seven parts, of at most " +
                         std::to_string(kPartLimit) + ".");
  }
  const IndexCharset charset(options.config.charset);
  progress.Begin("Looking for pages", 0);
  std::error_code error;  // of a folder that need not be there
  fs::path index =
      options.out.empty() ? fs::path() : fs::weakly_canonical(fs::absolute(options.out), error);
  if (!index.empty() && !index.has_filename()) index = index.parent_path();
  const SiteSource site = OpenSite(options, CheckedBaseUrl(options.baseUrl), index, progress, stop);
  const OpenedSource& opened = site.opened;
  const MemoryPlan memory = MemoryOf(options);
  const MemoryKeeper keeper(opened.state.path, memory);
  SiteListing listing = opened.source->List();
  PartNotes notes = {
      .part = *part,
      .list = ListFingerprintOf(listing.items),
      .base = opened.base,
      .look = LookAtSite(*opened.source, listing.items, opened.base, stop, options.config),
      .listing = {}};
  IndexSummary summary;
  Settle(notes.look, charset, options.config, summary);
  summary.siteItems = listing.items.size();
  KeepPart(*part, listing.items);
  const ItemList items = std::exchange(listing.items, {});
  notes.listing = std::move(listing);
  const std::unique_ptr<PageState> state = OpenPageState(options, opened, items);
  progress.Begin("Reading pages", items.size());
  PageReading reading({.source = *opened.source,
                       .items = items,
                       .base = opened.base,
                       .config = options.config,
                       .charset = charset,
                       .stop = stop,
                       .memory = memory});
  reading.state = state.get();
  size_t done = 0;
  ForEachItem(reading, JobsOf(options), memory.waiting,
              [&](size_t item, Reason reason, const PageBlock& block) {
                CheckStop(stop);
                keeper.Check();
                summary.sourceBytes += block.facts.fileSize;
                if (reason == Reason::kNone) ++summary.pages;
                if (reason != Reason::kNone) AddLeftOut(summary.files, reason, items[item].path);
                progress.Step(++done);
              });
  state->NotePart(PartText(notes));
  summary.part = std::to_string(part->number) + " of " + std::to_string(part->count);
  summary.partFolder = opened.state.path.string();
  summary.usesState = true;
  summary.keptPages = state->takenCount();
  const std::vector<Finding> faults = state->Finish();
  progress.Clear();
  if (faults.empty()) return summary;
  throw IndexError(ExitStatus::kFailed, FindingText(faults.front()) + ".");
}

}  // namespace vela::indexer
