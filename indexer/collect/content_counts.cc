#include "indexer/collect/content_counts.h"

namespace vela::indexer {

namespace {

void Mark(size_t place, std::vector<bool>& used) {
  if (place >= used.size()) used.resize(place + 1);
  used[place] = true;
}

bool Holds(const std::vector<bool>& used, size_t place) {
  return place < used.size() && used[place];
}

}  // namespace

void CountContent(const ContentUse& page, ContentCounts& counts) {
  counts.excluded += page.excluded;
  counts.excludingPages += page.excluded != 0 ? 1 : 0;
  counts.chosenPages += page.isChosen ? 1 : 0;
  if (page.rule != 0) Mark(page.rule - 1, counts.usedRules);
  for (const uint32_t selector : page.selectors) Mark(selector, counts.usedSelectors);
}

std::vector<Finding> UnusedContentRules(const SiteConfig& config, const ContentCounts& counts) {
  std::vector<Finding> unused;
  for (size_t i = 0; i < config.contentRules.size(); ++i) {
    if (Holds(counts.usedRules, i)) continue;
    unused.push_back({Reason::kUnusedContent, config.contentRules[i].where, {}});
  }
  for (size_t i = 0; i < config.selectors.size(); ++i) {
    if (Holds(counts.usedSelectors, i)) continue;
    unused.push_back(
        {Reason::kUnusedSelector, config.selectors[i].where, config.selectors[i].text});
  }
  return unused;
}

}  // namespace vela::indexer
