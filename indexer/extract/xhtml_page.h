// xhtml_page.h: from the markup of a page that is XML to its text.
#pragma once

#include <string>
#include <string_view>

#include "indexer/extract/content_choice.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes out of `xml` (UTF-8, whatever it declares) what ParseHtmlPage takes out of HTML. Elements
// are those of the XHTML namespace and of none. The named references of HTML are known without a
// document type; nothing outside of the page is ever read, and entities that grow out of proportion
// end the reading.
// Not well-formed: kNone, with `page` empty and in `fault` where and why ("line 3: mismatched
// tag"); in all other cases `fault` is empty. kNone, kNoindex, or why `budget` ended the reading,
// kind by kind as ParseHtmlPage has it. Throws std::bad_alloc when there is no memory.
[[nodiscard]] Reason ParseXhtmlPage(std::string_view xml, ReadingBudget& budget, PageContent& page,
                                    std::string& fault,
                                    const ContentChoice& choice = PlainContentChoice());

}  // namespace vela::indexer
