// file_types.h: what reads each type of file. A new type is a line of the table, its reader, and
// the endings by which the source knows it (source/file_endings.h).
#pragma once

#include "indexer/extract/content_choice.h"
#include "indexer/extract/document_readers.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"
#include "indexer/source/file_reading.h"
#include "indexer/source/source_item.h"

namespace vela::indexer {

// Brings what `file` holds of an item into `content`, within `budget`. Documents are handed to
// `documents`, not owned; without it none is read. `choice` is for those that are read as HTML.
// kNone, or why the page is left out.
[[nodiscard]] Reason ReadContent(const SourceItem& item, FileContent file,
                                 DocumentReaders* documents, const ContentChoice& choice,
                                 ReadingBudget& budget, PageContent& content);

}  // namespace vela::indexer
