// site_rules.h: what the owner's rules for addresses make of a page, and which rules fit none.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/report/reason.h"
#include "indexer/site/address_pattern.h"

namespace vela::indexer {

class SiteRules {
 public:
  // The categories and boosts of `config`, which must outlive the rules.
  explicit SiteRules(const SiteConfig& config);

  struct Outcome {
    std::string categories;  // see category_set.h
    uint8_t boost = 0;       // tenths, of the first rule that fits; 0 for none
  };
  Outcome Apply(const PageAddresses& page, std::string_view language);

  // The categories alone, for a copy that is left out for another page; whether they are used is
  // settled with that page, by UseCategories.
  std::string CategoriesOf(const PageAddresses& copy, std::string_view language) const;
  void UseCategories(std::string_view categories);

  // The rules that fitted no page up to now, categories first.
  std::vector<Finding> Unused() const;

 private:
  uint8_t BoostOf(const PageAddresses& page);

  const std::vector<CategoryRule>& categories_;
  const std::vector<BoostRule>& boosts_;
  std::string usedCategories_;    // the sets of all pages in one
  std::vector<bool> usedBoosts_;  // beside `boosts_`
};

}  // namespace vela::indexer
