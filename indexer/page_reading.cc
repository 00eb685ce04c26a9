#include "indexer/page_reading.h"

#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "indexer/source/fingerprint.h"
#include "indexer/state/anchor_bytes.h"

namespace vela::indexer {

namespace {

// What a page takes while it is read is many times its size. Of those above so many bytes threads
// read one at a time.
constexpr size_t kLargePageBytes = size_t{2} << 20;

void ReadItem(PageReading& reading, size_t number, BlockMaker& maker, ItemOutcome& outcome) {
  if (reading.parts != nullptr) {
    reading.parts->Take(number, outcome);
    return;
  }
  const SourceItem item = reading.items[number];
  PageState* state = reading.state;
  if (state != nullptr && state->Take(number, outcome)) return;
  outcome = ItemOutcome();
  ItemContent content;
  if (state != nullptr) content.version = reading.source.Version(item);
  FileContent file;
  outcome.reason = reading.source.Read(item, file);
  if (outcome.reason != Reason::kNone) {
    // It is asked for again, as what stands against it need not show in a version.
    if (state != nullptr) state->Keep(number, ItemContent(), outcome);
    return;
  }
  if (state != nullptr) {
    content.bytes = ContentFingerprint(file);
    content.modifiedTime = file.modifiedTime;
    if (state->TakeEqual(number, content, outcome)) return;
    outcome = ItemOutcome();
  }
  std::unique_lock large(reading.largePages, std::defer_lock);
  if (file.bytes.size() > kLargePageBytes) large.lock();
  if (reading.links != nullptr) {
    const std::optional<PageAnchors> anchors = AnchorsOfItem(item, file);
    if (anchors.has_value()) outcome.anchors = AnchorBytes(*anchors);
  }
  Page page;
  outcome.reason = ReadPage(item, std::move(file), reading.wishes, reading.limits, page);
  if (outcome.reason == Reason::kNone) outcome.reason = maker.Make(page, outcome.block);
  if (state != nullptr && outcome.reason != Reason::kStopped) state->Keep(number, content, outcome);
}

// From an item of the site to a block. Nothing of the index is touched, so that a page which takes
// more memory than there is costs the run no more than that page.
Reason MakeItemBlock(PageReading& reading, size_t number, BlockMaker& maker, PageBlock& block) try {
  ItemOutcome outcome;
  ReadItem(reading, number, maker, outcome);
  PageAnchors anchors;
  if (reading.links != nullptr && ReadAnchors(outcome.anchors, anchors)) {
    reading.links->AddPage(reading.items[number], std::move(anchors));
  }
  block = std::move(outcome.block);
  return outcome.reason;
} catch (const std::bad_alloc&) {
  return Reason::kNoMemory;
}

}  // namespace

void ForEachItem(PageReading& reading, unsigned jobs, size_t waitingBytes, const UseBlock& use) {
  const auto newMaker = [&]() -> MakeBlock {
    const auto maker = std::make_shared<BlockMaker>(reading.blocks);
    return [&reading, maker](size_t place, PageBlock& block) {
      return MakeItemBlock(reading, reading.order[place], *maker, block);
    };
  };
  ForEachBlock({.items = reading.items.size(), .jobs = jobs, .waitingBytes = waitingBytes},
               newMaker, [&](size_t place, Reason reason, PageBlock& block) {
                 use(reading.order[place], reason, block);
               });
}

}  // namespace vela::indexer
