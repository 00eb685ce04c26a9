// recommended.h: the reader of the ties of keywords to recommended pages (format/recommended.h). A
// line without a blank behind its first character is passed over.
#pragma once

#include <cstdint>

#include "index/load_status.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/owned_array.h"
#include "text/text_list.h"

namespace vela {

struct RecommendedTies {
  TextList keywords;
  OwnedArray<int64_t> dataOffsets;  // one per keyword
};

// Loads at most NumRecommended ties. kOk, kCannotOpen or kNoMemory.
[[nodiscard]] LoadStatus LoadRecommended(RecommendedTies& ties, const IndexDirectory& directory,
                                         const Settings& settings);

}  // namespace vela
