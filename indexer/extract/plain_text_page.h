// plain_text_page.h: a plain text file as a page.
#pragma once

#include <string>
#include <string_view>

#include "indexer/extract/page.h"

namespace vela::indexer {

// The title that a text in UTF-8 begins with: that of its front matter, or the first line that is
// no comment and no rule, when it is short enough and neither markup nor the head of a letter. Else
// empty.
std::string PlainTextTitle(std::string_view text);

// Title and text of `text`, UTF-8.
void ParsePlainTextPage(const std::string& text, PageContent& page);

}  // namespace vela::indexer
