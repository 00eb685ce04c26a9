// explain_content.h: what of a page is its text, and what is not.
#pragma once

#include "indexer/config/site_config.h"
#include "indexer/explanation/word_counter.h"
#include "indexer/extract/page.h"
#include "indexer/extract/reading_notes.h"
#include "indexer/report/explanation.h"

namespace vela::indexer {

// `isRead`: the page was not left out, so that its text is known.
void ExplainContent(const Page& page, const MarkupNotes& notes, bool isRead,
                    const SiteConfig& config, WordCounter& counter, Explanation& said);

}  // namespace vela::indexer
