// plain_text_page.h: a plain text file as a page.
#pragma once

#include <string>

#include "indexer/extract/page.h"

namespace vela::indexer {

// The title is the first line, when it is short enough to be one. `text` is UTF-8.
void ParsePlainTextPage(const std::string& text, PageContent& page);

}  // namespace vela::indexer
