// page_reading.h: from the items of a site to their blocks, each read by itself: from the source,
// or from what is kept of it.
#pragma once

#include <csignal>
#include <mutex>
#include <string>
#include <vector>

#include "indexer/collect/page_block.h"
#include "indexer/config/site_config.h"
#include "indexer/extract/content_choice.h"
#include "indexer/extract/document_readers.h"
#include "indexer/extract/read_page.h"
#include "indexer/joining_order.h"
#include "indexer/link_check.h"
#include "indexer/memory/memory_plan.h"
#include "indexer/page_workers.h"
#include "indexer/source/source.h"
#include "indexer/state/merged_parts.h"
#include "indexer/state/page_state.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// What a run that reads pages has of them all; the referenced objects outlive the reading.
struct ReadingInput {
  const Source& source;
  const ItemList& items;
  const std::string& base;
  const SiteConfig& config;
  const IndexCharset& charset;
  const volatile std::sig_atomic_t& stop;
  const MemoryPlan& memory;
};

// How the pages of the site are read, by all threads alike.
struct PageReading {
  explicit PageReading(const ReadingInput& input)
      : source(input.source),
        items(input.items),
        order(input.items, IndexesPictures(input.config)),
        content(input.config, input.base),
        wishes{.images = input.config.images,
               .recognisesLanguages = input.config.recognisesLanguages,
               .dates = input.config.dates,
               .documents = &documents,
               .content = &content},
        limits{.stop = &input.stop},
        blocks{.base = input.base,
               .config = input.config,
               .charset = input.charset,
               .stop = &input.stop,
               .memory = input.memory.known} {}

  const Source& source;
  const ItemList& items;
  const JoiningOrder order;
  DocumentReaders documents;
  const ContentChoices content;
  const PageWishes wishes;
  const ReadingLimits limits;
  const BlockInput blocks;
  std::mutex largePages;               // held by the thread that is busy with one
  LinkCheck* links = nullptr;          // not owned; null: links are not checked
  PageState* state = nullptr;          // not owned; null: nothing is kept from run to run
  const MergedParts* parts = nullptr;  // not owned; null: the site is read by this run
};

// Makes the items that `reading` is about into blocks, each of which `use` takes in its turn, which
// PageReading::order gives.
void ForEachItem(PageReading& reading, unsigned jobs, size_t waitingBytes, const UseBlock& use);

}  // namespace vela::indexer
