// plain_text.h: numbers and texts of an index as a terminal shows them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vela::inspector {

// The text without what would move a terminal's cursor or change its state: control characters, and
// bytes that are no UTF-8, become "?".
std::string Printable(std::string_view text);

// The beginning of the text in quotes, printable, at most so many bytes of it.
std::string Quoted(std::string_view text, size_t most = 60);

// "1 page", "12,345 pages".
std::string CountOfText(uint64_t count, std::string_view one, std::string_view several);

// "2024-02-29", in UTC; "none" for a page without a date.
std::string DateText(int32_t seconds);

}  // namespace vela::inspector
