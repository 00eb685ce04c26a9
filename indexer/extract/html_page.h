// html_page.h: from the markup of a page to its text.
#pragma once

#include <string_view>

#include "indexer/extract/content_choice.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes title, description, robots, meta elements, first time, canonical address and text out of
// `html` (UTF-8). Left out of the text: scripts, styles, templates, form controls but for buttons,
// hidden parts, and what surrounds the content of a page (navigation; header, footer and asides
// that belong to the whole page, but for the first h1 in a header). When nothing remains, headers,
// footers and asides count after all. Alternative texts of pictures stand at their place.
// What the owner says about the content of pages changes that: `choice`, and in the page itself the
// attributes data-vela-ignore, data-vela-body and data-vela-weight and the comments vela:off and
// vela:on (docs/content.md). Takes time and memory in proportion to the page. kNone, kNoindex (the
// page asks not to be found), or why `budget` ended the reading; then `page` is empty.
[[nodiscard]] Reason ParseHtmlPage(std::string_view html, ReadingBudget& budget, PageContent& page,
                                   const ContentChoice& choice = PlainContentChoice());

}  // namespace vela::indexer
