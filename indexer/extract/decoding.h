// decoding.h: bytes of any character set become UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "indexer/report/reason.h"

namespace vela::indexer {

// Converts `bytes` to UTF-8. The character set is, in this order: that of a byte-order mark, the
// one a meta element or XML declaration names (with `isHtml`), UTF-8 when the bytes are valid as
// such, the one that fits their statistics, windows-1252. What cannot be converted becomes U+FFFD,
// a NUL becomes a blank. kBinary, kNotConverted: this is no text.
[[nodiscard]] Reason ConvertToUtf8(std::string_view bytes, bool isHtml, std::string& utf8);

}  // namespace vela::indexer
