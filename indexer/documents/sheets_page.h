// sheets_page.h: a spreadsheet of Office Open XML (xlsx) as a page.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes the properties and what stands in the cells as text, row by row; names of sheets that an
// author gave are headings. Left out: hidden sheets, and numbers, which the document holds without
// the form in which a reader sees them.
[[nodiscard]] Reason ReadSheetsPage(std::string_view bytes, ReadingBudget& budget,
                                    PageContent& page);

}  // namespace vela::indexer
