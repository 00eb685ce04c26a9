#include "indexer/collect/site_rules.h"

#include "format/page_info.h"
#include "indexer/collect/category_set.h"

namespace vela::indexer {

SiteRules::SiteRules(const SiteConfig& config)
    : categories_(config.categories),
      boosts_(config.boosts),
      usedCategories_(CategorySetBytes(config.categories.size()), '\0'),
      usedBoosts_(config.boosts.size()) {}

uint8_t SiteRules::BoostOf(const PageAddresses& page) {
  uint8_t tenths = 0;
  bool found = false;
  for (size_t i = 0; i < boosts_.size(); ++i) {
    // Behind the first that fits, a look only for whether the owner must be told about the rule.
    if (found && usedBoosts_[i]) continue;
    if (!FitsAnyPattern(page, boosts_[i].pages)) continue;
    usedBoosts_[i] = true;
    if (!found) tenths = boosts_[i].tenths;
    found = true;
  }
  return tenths;
}

SiteRules::Outcome SiteRules::Apply(const PageAddresses& page, std::string_view language) {
  Outcome outcome = {.categories = CategoriesOf(page, language), .boost = BoostOf(page)};
  UseCategories(outcome.categories);
  return outcome;
}

std::string SiteRules::CategoriesOf(const PageAddresses& copy, std::string_view language) const {
  return CategorySet(categories_, copy, language);
}

void SiteRules::UseCategories(std::string_view categories) {
  AddCategories(categories, usedCategories_);
}

std::vector<Finding> SiteRules::Unused() const {
  std::vector<Finding> unused;
  for (size_t c = 0; c < categories_.size(); ++c) {
    if (HasCategory(usedCategories_, c)) continue;
    unused.push_back({Reason::kUnusedCategory, {}, categories_[c].name});
  }
  for (size_t i = 0; i < boosts_.size(); ++i) {
    if (usedBoosts_[i]) continue;
    unused.push_back({Reason::kUnusedBoost, boosts_[i].where, {}});
  }
  return unused;
}

}  // namespace vela::indexer
