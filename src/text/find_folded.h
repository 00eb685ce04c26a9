// find_folded.h: finding a piece of text with ASCII letters alike in either case, in long texts.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela {

// The first place from `from` on where `piece` (not empty) stands; npos for none.
size_t FindFolded(std::string_view text, std::string_view piece, size_t from);

}  // namespace vela
