// epub_page.h: a book in EPUB as a page.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes the properties, and the text of the chapters in reading order as that of HTML pages is
// taken. kEncrypted when the chapters are.
[[nodiscard]] Reason ReadEpubPage(std::string_view bytes, ReadingBudget& budget, PageContent& page);

}  // namespace vela::indexer
