// recommended.h: `vela_recommended.vdat`, which pages are put first for which words.
//
// A text file (keyword_line.h):
//
//   keywords position    what the query or a word of it must be, several separated by
//                        kKeywordSeparator; behind the last blank the position of the recommended
//                        page's line in the page data
#pragma once

#include <cstddef>

namespace vela {

inline constexpr char kRecommendedFileName[] = "vela_recommended.vdat";

inline constexpr size_t kRecommendedKeywordsLimit = 500;  // bytes kept of the keywords of a line
inline constexpr char kKeywordSeparator = ',';

}  // namespace vela
