// left_out.h: what was left out of the index and why: counted for the summary, listed for the
// report.
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
    std::vector<std::string> examples;  // the first kExampleLimit, a value behind its path
  };
  struct Entry {
    Reason reason = Reason::kNone;
    std::string path;
    std::string where;  // as in Key
    std::string value;  // of the meta field; empty for files
  };
  std::map<Key, Group> groups;
  std::vector<Entry> entries;  // all of them, in the order in which they were met
  uint64_t total = 0;
};

// Counts the file `path`, or what it holds as `value` for the meta field `where`, under its reason.
void AddLeftOut(LeftOut& leftOut, Reason reason, const std::string& path,
                std::string_view where = {}, std::string_view value = {});

// The groups under their texts, in the order of those.
std::map<std::string, const LeftOut::Group*> GroupsByText(const LeftOut& leftOut);

}  // namespace vela::indexer
