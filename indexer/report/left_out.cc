#include "indexer/report/left_out.h"

namespace vela::indexer {

void AddLeftOut(LeftOut& leftOut, Reason reason, const std::string& example,
                std::string_view where) {
  LeftOut::Group& group = leftOut.groups[{std::string(where), reason}];
  ++group.count;
  ++leftOut.total;
  if (group.examples.size() < LeftOut::kExampleLimit) group.examples.push_back(example);
}

std::map<std::string, const LeftOut::Group*> GroupsByText(const LeftOut& leftOut) {
  std::map<std::string, const LeftOut::Group*> groups;
  for (const auto& [key, group] : leftOut.groups) {
    groups.emplace(FindingText({key.reason, key.where, {}}), &group);
  }
  return groups;
}

}  // namespace vela::indexer
