// rich_text_page.h: a document in Rich Text Format as a page.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes title, author, subject, keywords and dates, and the text with its notes; headings are known
// by their styles. Left out: headers and footers, hidden text, instructions of fields, pictures and
// text boxes.
[[nodiscard]] Reason ReadRichTextPage(std::string_view bytes, ReadingBudget& budget,
                                      PageContent& page);

}  // namespace vela::indexer
