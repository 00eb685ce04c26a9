// left_out.h: what was left out of the index and why, counted for the summary.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/report/reason.h"

namespace vela::indexer {

struct LeftOut {
  static constexpr size_t kExampleLimit = 3;
  struct Key {
    std::string where;  // a meta field; empty for files
    Reason reason = Reason::kNone;
    auto operator<=>(const Key&) const = default;
  };
  struct Group {
    uint64_t count = 0;
    std::vector<std::string> examples;  // the first kExampleLimit
  };
  std::map<Key, Group> groups;
  uint64_t total = 0;
};

// Counts a file, or a value of the meta field `where`, under its reason. `example` is how the
// summary calls it.
void AddLeftOut(LeftOut& leftOut, Reason reason, const std::string& example,
                std::string_view where = {});

// The groups under their texts, in the order of those.
std::map<std::string, const LeftOut::Group*> GroupsByText(const LeftOut& leftOut);

}  // namespace vela::indexer
