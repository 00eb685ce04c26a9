// recommended.h: the ties of keywords to recommended pages (`vela_recommended.vdat`).
//
// A text file, one tie a line: the keyword (it may hold blanks, or several keywords separated by
// ","), a blank, and the position of the page's line in `vela_pagedata.vdat`. A line is read in
// pieces of at most MaxKeyWordLineLen - 1 bytes; one without a blank behind its first character is
// passed over. Of a keyword 500 bytes are kept.
#pragma once

#include <cstdint>

#include "index/load_status.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/owned_array.h"
#include "text/text_list.h"

namespace vela {

inline constexpr char kRecommendedFileName[] = "vela_recommended.vdat";

struct RecommendedTies {
  TextList keywords;
  OwnedArray<int64_t> dataOffsets;  // one per keyword
};

// Loads at most NumRecommended ties. kOk, kCannotOpen or kNoMemory.
[[nodiscard]] LoadStatus LoadRecommended(RecommendedTies& ties, const IndexDirectory& directory,
                                         const Settings& settings);

}  // namespace vela
