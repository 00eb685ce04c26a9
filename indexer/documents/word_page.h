// word_page.h: a text of Office Open XML (docx) as a page.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes the properties and the text: paragraphs, tables, text boxes, foot and end notes. Headings
// are known by their styles. Left out: headers and footers, comments, what was deleted or is
// hidden.
[[nodiscard]] Reason ReadWordPage(std::string_view bytes, ReadingBudget& budget, PageContent& page);

}  // namespace vela::indexer
