// find_folded.h: texts in which ASCII letters are alike in either case.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela {

// The first place in a long text from `from` on where `piece` (not empty) stands; npos for none.
size_t FindFolded(std::string_view text, std::string_view piece, size_t from);

// Below 0, 0 or above 0, as `a` comes before `b` by its bytes, is the same text, or comes behind
// it.
int CompareFolded(std::string_view a, std::string_view b);

}  // namespace vela
