// documents.h: what reads each type of document. All of it runs in a process of its own, where
// nothing but memory and time can be lost (sandbox.h).
#pragma once

#include <string_view>

#include "format/page_info.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Whether documents of that type are read here.
bool IsDocument(FileType type);

// Has the libraries read what they read from files, before none can be opened.
void PrepareReaders();

// Brings a document into `page`. kNone, or why it is left out: kEncrypted, kDamaged (also for a
// type that is not read here), kNoindex, or how `budget` ended the reading. Throws std::bad_alloc
// when there is no memory.
[[nodiscard]] Reason ReadDocument(FileType type, std::string_view bytes, ReadingBudget& budget,
                                  PageContent& page);

}  // namespace vela::indexer
