// stored_text.h: texts as they stand in the index, which the search program puts on its page as
// they are.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "indexer/words/index_charset.h"

namespace vela::indexer {

// Plain text in the character set of the index: safe in HTML and in an attribute, on one line,
// without "|"; what the set does not have as a reference. At most `limit` bytes: a longer text
// is cut at a word, or at a character where a word is too long, and ends in an ellipsis.
std::string StoredText(std::string_view text, size_t limit, const IndexCharset& charset);

// The same without a limit.
std::string StoredText(std::string_view text, const IndexCharset& charset);

// The same for texts that stand between tags only and that the search program compares with what a
// visitor types: quotes, apostrophes and "|" stay as they are.
std::string StoredElementText(std::string_view text, size_t limit, const IndexCharset& charset);

}  // namespace vela::indexer
