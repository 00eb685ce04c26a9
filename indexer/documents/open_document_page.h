// open_document_page.h: a text, presentation or spreadsheet of OpenDocument as a page.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes the properties and the text: paragraphs, tables, notes of a text, cells as they are shown.
// Headings are those of the text, titles of slides, and names of sheets that an author gave. Left
// out: headers and footers, comments, what was deleted, notes of slides.
[[nodiscard]] Reason ReadOpenDocumentPage(std::string_view bytes, ReadingBudget& budget,
                                          PageContent& page);

}  // namespace vela::indexer
