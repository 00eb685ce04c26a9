// old_slides_page.h: a presentation in the binary format of PowerPoint 97 to 2003 (ppt) as a page.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes the text of the slides in their order, that of placeholders before that of text boxes;
// titles of slides are headings. Left out: hidden slides, notes, masters, numbers, dates and
// footers. kEncrypted; kDamaged, also of an older format.
[[nodiscard]] Reason ReadOldSlidesPage(std::string_view bytes, ReadingBudget& budget,
                                       PageContent& page);

}  // namespace vela::indexer
