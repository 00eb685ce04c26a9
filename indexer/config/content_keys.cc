#include "indexer/config/content_keys.h"

#include <utility>

namespace vela::indexer {

namespace {

void ReadSelectors(ConfigTable& table, std::string_view key, const std::string& where,
                   SiteConfig& config, std::vector<ElementSelector>& selectors) {
  std::vector<std::string> texts;
  if (!table.Texts(key, kSelectorBytesLimit, texts)) return;
  selectors.clear();
  for (const std::string& text : texts) {
    SelectorFault fault;
    for (ElementSelector& selector : ParseSelectors(text, fault)) {
      selector.number = static_cast<uint32_t>(config.selectors.size());
      config.selectors.push_back({selector.text, where});
      selectors.push_back(std::move(selector));
    }
    if (fault.what.empty()) continue;
    const std::string rest = text.substr(fault.at);
    table.RefuseValue(key, " holds \"" + text + "\", which is no selector" +
                               (rest.empty() ? " where it ends" : " from \"" + rest + "\" on") +
                               ". " + fault.what);
  }
  if (selectors.size() > kSelectorLimit) {
    table.RefuseValue(key, " holds more than " + std::to_string(kSelectorLimit) + " selectors.");
  }
}

size_t OuterParts(const std::vector<ElementSelector>& selectors) {
  size_t parts = 0;
  for (const ElementSelector& selector : selectors) parts += selector.parts.size() - 1;
  return parts;
}

}  // namespace

void ReadContentKeys(ConfigTable& table, const std::string& where, SiteConfig& config,
                     ContentRule& rule) {
  ReadSelectors(table, "exclude_elements", where, config, rule.excludeElements);
  ReadSelectors(table, "only_elements", where, config, rule.onlyElements);
  if (OuterParts(rule.excludeElements) + OuterParts(rule.onlyElements) > kOuterPartsLimit) {
    table.RefuseWhole("The selectors of exclude_elements and only_elements have more than " +
                      std::to_string(kOuterPartsLimit) +
                      " blanks and > together. Name more of the elements by a class or id alone.");
  }
  constexpr std::string_view kNavigation[] = {"leave_out", "index"};
  size_t place = 0;
  if (table.Choice("navigation", kNavigation, place)) rule.indexesNavigation = place == 1;
  constexpr std::string_view kMain[] = {"all", "prefer"};
  if (table.Choice("main", kMain, place)) rule.prefersMain = place == 1;
  int64_t words = 0;
  if (table.Number("section_pages", 0, kSectionWordsLimit, words)) {
    rule.sectionWords = static_cast<uint32_t>(words);
  }
}

}  // namespace vela::indexer
