// read_page.h: from the bytes of one item to a page.
#pragma once

#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/extract/content_choice.h"
#include "indexer/extract/document_readers.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"
#include "indexer/source/file_reading.h"
#include "indexer/source/source_item.h"

namespace vela::indexer {

// What to take from pages beside their text, and by what means.
struct PageWishes {
  bool images = true;
  bool recognisesLanguages = false;         // of pages that name none, from their text
  std::vector<DateSource> dates;            // tried in this order
  DocumentReaders* documents = nullptr;     // not owned; null: documents are left out
  const ContentChoices* content = nullptr;  // not owned; null: the owner says nothing about it
};

// Reads what `file` holds of `item` into `page`, within `limits`. kNone, or why the page is left
// out; a picture that says nothing of itself is none of those. Throws std::bad_alloc when there is
// no memory, also for less than the limits allow.
[[nodiscard]] Reason ReadPage(const SourceItem& item, FileContent file, const PageWishes& wishes,
                              const ReadingLimits& limits, Page& page);

// The first heading of the highest level, on one line; empty when the page has none.
std::string HeadingTitle(const PageContent& content);

}  // namespace vela::indexer
