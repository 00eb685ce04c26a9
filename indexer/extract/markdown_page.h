// markdown_page.h: a Markdown file as a page.
#pragma once

#include <string_view>

#include "indexer/extract/content_choice.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Takes out of `text` (UTF-8) what ParseHtmlPage takes out of the HTML that it stands for. What the
// front matter, lines between two of "---" at the beginning, says of title, description, author,
// keywords and date comes before. Anchors are those that the text writes as HTML: those of headings
// are made by whatever shows it. kNone, kNoindex, or why `budget` ended the reading.
[[nodiscard]] Reason ParseMarkdownPage(std::string_view text, ReadingBudget& budget,
                                       PageContent& page,
                                       const ContentChoice& choice = PlainContentChoice());

}  // namespace vela::indexer
