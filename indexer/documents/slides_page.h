// slides_page.h: a presentation of Office Open XML (pptx) as a page.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes the properties and the text of the slides in their order; titles of slides are headings.
// Left out: hidden slides, notes, numbers, dates and footers of slides.
[[nodiscard]] Reason ReadSlidesPage(std::string_view bytes, ReadingBudget& budget,
                                    PageContent& page);

}  // namespace vela::indexer
