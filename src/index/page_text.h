// page_text.h: the text of every page as word numbers (`vela_pagetext.vdat`).
//
// Tokens of DictIDLen bytes without a header: the word number, little-endian, in all bytes but the
// last, which numbers the spelling of the word.
#pragma once

#include <string_view>

namespace vela {

inline constexpr char kPageTextFileName[] = "vela_pagetext.vdat";

// Whether the file holds the text that an indexer puts in its place when the index was built
// without page text. Kept: at most six bytes are looked at, of which the seventh is then missing,
// so that the answer is never yes.
bool IsPageTextPlaceholder(std::string_view file);

}  // namespace vela
