#include "indexer/site_pages.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <optional>
#include <utility>

#include "indexer/link_check.h"
#include "indexer/memory/freed_memory.h"
#include "indexer/page_reading.h"
#include "indexer/report/index_error.h"
#include "indexer/report/report_text.h"
#include "indexer/run_conditions.h"
#include "indexer/site/address.h"

namespace vela::indexer {

namespace {

// Takes the block of one item of the site in. kNone, or why it is left out. Where there is no
// memory for its words, half of them may be in the index: the run cannot go on.
Reason TakeBlock(const PageBlock& block, SitePages& pages, LeftOut& remarks) try {
  const Reason reason = AddPage(block, pages.collection, pages.entry);
  if (reason != Reason::kNone) return reason;
  pages.number = pages.collection.pages.size() - 1;
  pages.table.AddPage(pages.entry);
  PageEntry entry;
  for (const PageBlock& section : block.pieces) {
    AddSectionPage(section, pages.entry, pages.collection, entry);
    pages.table.AddPage(entry);
  }
  if (!block.markupFault.empty()) {
    AddLeftOut(remarks, Reason::kNotWellFormed, block.facts.path, {}, block.markupFault);
  }
  if (block.use.isLeftOff) AddLeftOut(remarks, Reason::kLeftOff, block.facts.path);
  if (block.use.lacksChosen) AddLeftOut(remarks, Reason::kNothingChosen, block.facts.path);
  return Reason::kNone;
} catch (const std::bad_alloc&) {
  throw IndexError(ExitStatus::kFailed, "Out of memory at " + block.facts.path +
                                            ". Give a smaller --memory or --max-file-size, or "
                                            "leave that page out (--exclude).");
}

// Says what became of an item of the site.
void Report(const SourceItem& item, Reason reason, IndexRun& run, SitePages& pages) {
  if (reason != Reason::kNone) AddLeftOut(run.summary.files, reason, item.path);
  std::string similar;
  if (reason == Reason::kNone && pages.entry.similarTo.has_value()) {
    similar = PlainAddress(pages.table.ReadLine(*pages.entry.similarTo).address);
    AddLeftOut(run.summary.similar, Reason::kSimilar, item.path, {}, similar);
  }
  if (!run.report.isWanted()) return;
  const PageCollection& collection = pages.collection;
  if (reason == Reason::kNone) {
    run.report.AddPage(item, pages.entry, pages.number, similar);
  } else {
    run.report.AddLeftOut(item, reason, OriginalOf(item, reason, collection, pages.table));
  }
}

[[noreturn]] void RefuseEmptySite(const std::string& sought, const LeftOut& leftOut) {
  std::string why;
  for (const auto& [reason, group] : GroupsByText(leftOut)) {
    why += "\n  left out: " + std::to_string(group->count) + " (" + reason + ")";
  }
  throw IndexError(ExitStatus::kNothing, "No page to index was found " + sought + why);
}

}  // namespace

void ReadPages(const Source& source, SiteListing& listing, IndexRun& run, SitePages& pages) {
  const ItemList& items = listing.items;
  run.report.AddListing(listing);
  std::optional<LinkCheck> links;
  if (!run.options.checkLinks.empty()) {
    links.emplace(LinkedSite{.base = run.base, .folder = run.options.site}, listing);
  }
  run.summary.files = std::move(listing.leftOut);
  run.summary.otherKinds = std::move(listing.otherKinds);
  std::ranges::move(listing.unused, std::back_inserter(run.summary.warnings));
  for (const SourceItem& item : items) pages.collection.addresses.AddItem(item.address);
  AddPictures(items, pages.collection);
  run.progress.Begin("Reading pages", items.size());
  PageReading reading({.source = source,
                       .items = items,
                       .base = run.base,
                       .config = run.options.config,
                       .charset = run.charset,
                       .stop = run.stop,
                       .memory = run.memory});
  reading.links = links.has_value() ? &*links : nullptr;
  reading.state = run.state;
  reading.parts = run.parts;
  size_t done = 0;
  ForEachItem(reading, JobsOf(run.options), run.memory.waiting,
              [&](size_t item, Reason reason, const PageBlock& block) {
                run.mayDiffer = run.mayDiffer || IsPassing(reason);
                if (reason == Reason::kNone) reason = TakeBlock(block, pages, run.summary.remarks);
                if (reason == Reason::kNone) run.summary.sectionPages += block.pieces.size();
                CheckStop(run.stop);  // perhaps in the middle of the page
                run.keeper.Check();
                Report(items[item], reason, run, pages);
                run.progress.Step(++done);
              });
  if (pages.collection.pages.empty()) {
    WriteTextReport(run.options, run.summary);
    RefuseEmptySite(listing.sought, run.summary.files);
  }
  if (links.has_value()) run.summary.links = links->Finish(pages.collection.addresses);
  listing.items = ItemList();
  EndJoining(pages.collection);
  ReturnFreedMemory();  // what pages were read with is of no use to what follows
}

}  // namespace vela::indexer
