// rollback.h: the index before the present one takes its place again.
#pragma once

#include <ctime>
#include <filesystem>

#include "indexer/publish/index_place.h"

namespace vela::indexer {

// An index, as a person knows it.
struct KnownIndex {
  std::time_t made = 0;
  int32_t pages = 0;
};

// Puts the last index in `target` into place again, in one step as a new one, together with what
// its run wrote beside it, such as the template and the search program. What the owner changed
// since, and whatever the indexer did not write, stays as it is now. The index that gives way is
// the last one then, so that doing it again undoes it. Returns the index that is in place.
// Throws IndexError: kNothing when there is no last index; nothing has changed then.
KnownIndex RollBack(const std::filesystem::path& target, PublishSystem system);

}  // namespace vela::indexer
