// index_changes.h: in which pages a new index differs from the one before.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vela::indexer {

struct ChangedPages {
  static constexpr size_t kExampleLimit = 5;
  uint64_t count = 0;
  std::vector<std::string> examples;  // the addresses of the first kExampleLimit
};

struct IndexChanges {
  bool hasFormer = false;  // else there is nothing to compare with, and all pages are new
  ChangedPages added;
  ChangedPages gone;
  // What is shown of them, their size, date, picture or fields.
  ChangedPages changed;
};

}  // namespace vela::indexer
