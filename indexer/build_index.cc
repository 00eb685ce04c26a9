#include "indexer/build_index.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "format/index_directory.h"
#include "indexer/build_part.h"
#include "indexer/config/extensions.h"
#include "indexer/config/language_file.h"
#include "indexer/index_files.h"
#include "indexer/index_run.h"
#include "indexer/memory/memory_keeper.h"
#include "indexer/memory/memory_plan.h"
#include "indexer/open_source.h"
#include "indexer/page_reading.h"
#include "indexer/publish/compare_indexes.h"
#include "indexer/publish/former_settings.h"
#include "indexer/publish/index_folder.h"
#include "indexer/publish/open_search.h"
#include "indexer/publish/public_files.h"
#include "indexer/publish/search_program.h"
#include "indexer/publish/search_template.h"
#include "indexer/report/index_error.h"
#include "indexer/report/report_text.h"
#include "indexer/run_conditions.h"
#include "indexer/run_report.h"
#include "indexer/run_state.h"
#include "indexer/site/address.h"
#include "indexer/site_look.h"
#include "indexer/site_pages.h"
#include "indexer/write/settings_writer.h"
#include "text/shown_numbers.h"

namespace vela::indexer {

namespace {

// A site that lost many of its pages at once is more often half copied or not mounted than smaller.
void CheckMissingPages(const IndexRun& run, uint64_t pages) {
  constexpr uint64_t kWhole = 100;
  const Options& options = run.options;
  if (options.acceptFewer || options.missingPercentLimit >= kWhole) return;
  const std::unique_ptr<Settings> settings = ReadFormerSettings(run.folder.target());
  if (settings == nullptr) return;
  const auto former = static_cast<uint64_t>(std::max(settings->NumPages, 0));
  if (pages * kWhole >= former * (kWhole - options.missingPercentLimit)) return;
  throw IndexError(ExitStatus::kShrunk,
                   "Only " + CountText(pages) + " pages were found where the index has " +
                       CountText(former) + "; more than " +
                       std::to_string(options.missingPercentLimit) +
                       " % are missing (stop_when_fewer), and the index was not changed. Check "
                       "that " +
                       (options.site.empty() ? "the site" : options.site) +
                       " is whole, or run once with --accept-fewer.");
}

void CheckBrokenLinks(const IndexRun& run) {
  if (run.options.checkLinks != "fail" || run.summary.links.found.empty()) return;
  throw IndexError(ExitStatus::kBrokenLinks, LinksText(run.summary.links) +
                                                 "The index was not changed (--check-links=fail).");
}

// Whether the index that is there is what this run would make, and nothing else is asked of it.
bool IsThere(const IndexRun& run, const Fingerprint& wishes) {
  const Options& options = run.options;
  return run.state != nullptr && run.state->isUnchanged() && options.report.empty() &&
         options.checkLinks.empty() && !options.dryRun &&
         run.state->IsPublished(wishes, run.folder.target());
}

IndexSummary Build(const Options& given, Progress& progress, const volatile std::sig_atomic_t& stop,
                   RunReport& report) {
  Options options = given;
  const std::string givenBase = CheckedBaseUrl(options.baseUrl);
  const IndexCharset charset(options.config.charset);
  const Language language = LoadLanguage(options.language);
  IndexFolder folder(options.out, PublishSystemOf(options, progress, stop));
  const MemoryPlan memory = MemoryOf(options);
  const MemoryKeeper keeper(folder.fresh(), memory);
  // Before the template and the program, which may take a while.
  progress.Begin("Looking for pages", 0);
  const SiteSource site = OpenSite(options, givenBase, folder.target(), progress, stop);
  const OpenedSource& opened = site.opened;
  const std::string& base = opened.base;
  AddXmlSettings(base, options.config);

  if (!options.program.empty()) InstallProgram(options.program, folder.fresh());
  IndexRun run = {.options = options,
                  .base = base,
                  .charset = charset,
                  .folder = folder,
                  .progress = progress,
                  .stop = stop,
                  .report = report,
                  .memory = memory,
                  .keeper = keeper,
                  .state = nullptr,
                  .parts = site.parts,
                  .summary = {}};
  IndexSummary& summary = run.summary;
  const Finding templateFault = WriteTemplate(options, language.templateWords, charset, folder);
  if (templateFault.reason != Reason::kNone) summary.warnings.push_back(templateFault);
  summary.warnings.insert(summary.warnings.end(), opened.findings.begin(), opened.findings.end());
  Source& source = *opened.source;
  progress.Begin("Looking for pages", 0);
  SiteListing listing = source.List();
  const SiteLook look = site.parts != nullptr
                            ? site.parts->notes().look
                            : LookAtSite(source, listing.items, base, stop, options.config);
  Settle(look, charset, options.config, summary);
  if (site.parts != nullptr) site.parts->CheckVersion(BlocksVersion(options, base));
  const std::unique_ptr<PageState> state = OpenPageState(options, opened, listing.items);
  run.state = state.get();
  Fingerprint wishes;
  if (state != nullptr) wishes = IndexWishes(options, base, language, folder.fresh());
  if (IsThere(run, wishes)) {
    const std::unique_ptr<Settings> settings = ReadFormerSettings(folder.target());
    if (settings != nullptr) summary.pages = static_cast<uint64_t>(std::max(settings->NumPages, 0));
    summary.isUnchanged = true;
    std::ranges::move(state->Finish(), std::back_inserter(summary.warnings));
    progress.Clear();
    return summary;
  }
  SitePages pages(run);
  ReadPages(source, listing, run, pages);
  IndexFacts facts;
  uint64_t bytes = WriteIndexFiles(run, pages, facts);
  bytes += WriteSettings(folder.fresh() / kSettingsFileName, facts, options.config, charset,
                         language.strings);
  WritePublicFiles(options.config, facts.autocomplete != 0, charset, folder);
  PageCollection& collection = pages.collection;
  summary.pages = facts.pages;
  summary.occurrences = collection.tokenCount;
  summary.sourceBytes = collection.sourceBytes;
  summary.indexBytes = bytes;
  summary.metaValues = std::move(collection.metaValues);
  summary.content = {.excluded = collection.content.excluded,
                     .excludingPages = collection.content.excludingPages,
                     .chosenPages = collection.content.chosenPages};
  const Finding logFault = LogFolderFault(options.config, folder.target());
  if (logFault.reason != Reason::kNone) summary.warnings.push_back(logFault);
  // Before the index changes, so that a run that cannot write it leaves all as it was.
  WriteTextReport(run.options, run.summary);
  CheckMissingPages(run, summary.pages);
  CheckBrokenLinks(run);
  CheckStop(stop);
  keeper.Check();
  if (options.dryRun || report.isWanted()) {
    progress.Begin("Comparing with the index before", 0);
    summary.changes = CompareIndexes(folder.target(), folder.fresh());
  }
  summary.isDryRun = options.dryRun;
  report.Finish(summary);
  const std::vector<std::string> written = FilesIn(folder.fresh());
  if (!options.dryRun) folder.Commit();
  if (state != nullptr) {
    if (!options.dryRun && !run.mayDiffer) state->NotePublished(wishes, folder.target(), written);
    summary.usesState = true;
    summary.keptPages = state->takenCount();
    std::ranges::move(state->Finish(), std::back_inserter(summary.warnings));
  }
  progress.Clear();
  return summary;
}

}  // namespace

IndexSummary BuildIndex(const Options& options, Progress& progress,
                        const volatile std::sig_atomic_t& stop) {
  RunReport report(options, progress);
  try {
    if (!options.part.empty()) return BuildPart(options, progress, stop);
    return Build(options, progress, stop, report);
  } catch (const IndexError& error) {
    report.Fail(error.status, error.what());
    throw;
  } catch (const std::exception& error) {
    report.Fail(ExitStatus::kFailed, error.what());
    throw;
  }
}

}  // namespace vela::indexer
