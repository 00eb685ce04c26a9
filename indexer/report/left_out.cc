#include "indexer/report/left_out.h"

namespace vela::indexer {

namespace {
constexpr size_t kShownValueLimit = 60;  // bytes
}

void AddLeftOut(LeftOut& leftOut, Reason reason, const std::string& path, std::string_view where,
                std::string_view value) {
  LeftOut::Group& group = leftOut.groups[{std::string(where), reason}];
  ++group.count;
  ++leftOut.total;
  leftOut.entries.push_back({reason, path, std::string(where), std::string(value)});
  if (group.examples.size() == LeftOut::kExampleLimit) return;
  std::string example = path;
  if (!value.empty()) {
    example.append(" (\"").append(value.size() > kShownValueLimit ? "..." : value).append("\")");
  }
  group.examples.push_back(std::move(example));
}

std::map<std::string, const LeftOut::Group*> GroupsByText(const LeftOut& leftOut) {
  std::map<std::string, const LeftOut::Group*> groups;
  for (const auto& [key, group] : leftOut.groups) {
    groups.emplace(FindingText({key.reason, key.where, {}}), &group);
  }
  return groups;
}

}  // namespace vela::indexer
