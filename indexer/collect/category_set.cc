#include "indexer/collect/category_set.h"

namespace vela::indexer {

std::string CategorySet(const std::vector<CategoryRule>& categories, const PageAddresses& page) {
  std::string set(CategoryBytes(categories.size()), '\0');
  for (size_t c = 0; c < categories.size(); ++c) {
    if (!FitsAnyPattern(page, categories[c].pages)) continue;
    set[c / 8] = static_cast<char>(static_cast<unsigned char>(set[c / 8]) | 1U << (c % 8));
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
  const unsigned bits = static_cast<unsigned char>(set[category / 8]);
  return (bits >> (category % 8) & 1U) != 0;
}

}  // namespace vela::indexer
