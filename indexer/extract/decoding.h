// decoding.h: bytes of any character set become UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// Converts `bytes` to UTF-8. The character set is, in this order: that of a byte-order mark; UTF-16
// or UTF-32, when the bytes are text as such; the one that the server gave (`serverCharset`, in
// lower case; empty: none); the one that the markup declares (with `isHtml`); ISO-2022-JP, when all
// is ASCII and switches to it; UTF-8, when the bytes are valid as such; the one that fits their
// statistics; windows-1252. What cannot be converted becomes U+FFFD, a NUL becomes a blank.
// kBinary, kNotConverted: this is no text. Else kNone, or why `budget` ended the reading. Throws
// std::bad_alloc when there is no memory.
[[nodiscard]] Reason ConvertToUtf8(std::string_view bytes, bool isHtml, ReadingBudget& budget,
                                   std::string& utf8, std::string_view serverCharset = {});
// The same for whoever needs the bytes no more: those that are UTF-8 as they stand are not copied.
[[nodiscard]] Reason TurnIntoUtf8(std::string bytes, bool isHtml, ReadingBudget& budget,
                                  std::string& utf8, std::string_view serverCharset = {});

}  // namespace vela::indexer
