#include "indexer/extract/content_choice.h"

#include <span>
#include <utility>

#include "indexer/site/address_pattern.h"

namespace vela::indexer {

namespace {

ContentChoice ChoiceOf(const ContentRule& rule, bool namesPictures, uint32_t number) {
  ContentChoice choice;
  for (const ElementSelector& each : rule.excludeElements) {
    choice.selectors.Add(each, SelectorUse::kExclude);
  }
  for (const ElementSelector& each : rule.onlyElements) {
    choice.selectors.Add(each, SelectorUse::kOnly);
  }
  choice.hasOnly = !rule.onlyElements.empty();
  choice.indexesNavigation = rule.indexesNavigation;
  choice.prefersMain = rule.prefersMain;
  choice.namesPictures = namesPictures;
  choice.rule = number;
  return choice;
}

}  // namespace

const ContentChoice& PlainContentChoice() {
  static const ContentChoice plain = ChoiceOf(ContentRule(), false, 0);
  return plain;
}

ContentChoices::ContentChoices(const SiteConfig& config, std::string base)
    : base_(std::move(base)), site_(ChoiceOf(config.content, IndexesPictures(config), 0)) {
  for (const ContentRule& rule : config.contentRules) {
    const auto number = static_cast<uint32_t>(rules_.size() + 1);
    rules_.push_back({rule.pages, ChoiceOf(rule, site_.namesPictures, number)});
  }
}

const ContentChoice& ContentChoices::Of(const std::string& address) const {
  const PageAddresses page = {.base = base_, .all = std::span(&address, 1)};
  for (const Rule& rule : rules_) {
    if (FitsAnyPattern(page, rule.pages)) return rule.choice;
  }
  return site_;
}

}  // namespace vela::indexer
