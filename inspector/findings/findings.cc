#include "inspector/findings/findings.h"

#include <algorithm>

namespace vela::inspector {

void Findings::Add(Fault fault, std::string_view file, Place place, std::string detail) {
  ++count_;
  if (++counts_[{file, fault}] > most_) return;
  kept_.push_back({fault, file, place, std::move(detail)});
}

uint64_t Findings::CountOf(Fault fault, std::string_view file) const {
  const auto found = counts_.find({file, fault});
  return found == counts_.end() ? 0 : found->second;
}

std::vector<FindingCount> Findings::Counts() const {
  std::vector<FindingCount> counts;
  for (const auto& [of, found] : counts_) {
    counts.push_back({of.first, of.second, found, std::min<uint64_t>(found, most_)});
  }
  return counts;
}

}  // namespace vela::inspector
