#include "indexer/collect/category_set.h"

#include <algorithm>

#include "format/page_info.h"

namespace vela::indexer {

namespace {

bool Fits(const CategoryRule& rule, const PageAddresses& page, std::string_view language) {
  return (rule.pages.empty() || FitsAnyPattern(page, rule.pages)) &&
         (rule.languages.empty() ||
          std::ranges::find(rule.languages, language) != rule.languages.end());
}

}  // namespace

std::string CategorySet(const std::vector<CategoryRule>& categories, const PageAddresses& page,
                        std::string_view language) {
  std::string set(CategorySetBytes(categories.size()), '\0');
  for (size_t c = 0; c < categories.size(); ++c) {
    if (!Fits(categories[c], page, language)) continue;
    char& bits = set[CategoryByte(c)];
    bits = static_cast<char>(static_cast<unsigned char>(bits) | 1U << CategoryBit(c));
  }
  return set;
}

void AddCategories(std::string_view set, std::string& all) {
  for (size_t i = 0; i < set.size(); ++i) {
    all[i] =
        static_cast<char>(static_cast<unsigned char>(all[i]) | static_cast<unsigned char>(set[i]));
  }
}

bool HasCategory(std::string_view set, size_t category) {
  const unsigned bits = static_cast<unsigned char>(set[CategoryByte(category)]);
  return (bits >> CategoryBit(category) & 1U) != 0;
}

}  // namespace vela::indexer
