// text_diff.h: two byte strings side by side, line by line, for test messages.
#pragma once

#include <string>
#include <string_view>

namespace vela::support {

// The line with every byte that would not show written as an escape.
std::string Visible(std::string_view line);

// The lines of both texts, " " before a common one, "-" before one that is only expected and "+"
// before one that is only there. Long common stretches are left out. A line's missing line feed is
// told. Empty when the texts are equal.
std::string DiffLines(std::string_view expected, std::string_view actual);

}  // namespace vela::support
