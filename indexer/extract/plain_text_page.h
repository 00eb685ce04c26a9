// plain_text_page.h: a plain text file as a page.
#pragma once

#include <string>

#include "indexer/extract/page.h"

namespace vela::indexer {

// The title is that of the front matter, or the first line that is no comment and no rule, when it
// is short enough and neither markup nor the head of a letter. `text` is UTF-8.
void ParsePlainTextPage(const std::string& text, PageContent& page);

}  // namespace vela::indexer
