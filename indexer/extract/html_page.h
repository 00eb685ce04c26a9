// html_page.h: from the markup of a page to its text.
#pragma once

#include <string_view>

#include "indexer/extract/page.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes title, description, robots, meta elements, first time, canonical address and text out of
// `html` (UTF-8). Left out of the text: scripts, styles, templates, form controls, hidden parts,
// and what surrounds the content of a page (navigation; header, footer and asides that belong to
// the whole page). When nothing remains, headers, footers and asides count after all. Alternative
// texts of pictures stand at their place. kNoindex: the page asks not to be found. kMarkupTooDeep,
// kMarkupTooLarge: markup beyond what a page written for readers needs. Needs memory in proportion
// to the page.
[[nodiscard]] Reason ParseHtmlPage(std::string_view html, PageContent& page);

}  // namespace vela::indexer
