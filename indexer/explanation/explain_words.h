// explain_words.h: by which words a page is found, and where they stand.
#pragma once

#include <string>

#include "indexer/collect/page_block.h"
#include "indexer/config/site_config.h"
#include "indexer/explanation/word_counter.h"
#include "indexer/extract/page.h"
#include "indexer/report/explanation.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// `block` is what was made of the page; `pictureTexts` the alternative texts in its own text.
void ExplainWords(const Page& page, const PageBlock& block, const std::string& pictureTexts,
                  const SiteConfig& config, const IndexCharset& charset, WordCounter& counter,
                  Explanation& said);

}  // namespace vela::indexer
