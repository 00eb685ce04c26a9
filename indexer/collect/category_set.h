// category_set.h: the set of categories that a page's addresses put it in.
//
// The search program reads the set at TestCategory (src/search/filters.h): category c is bit
// c mod 8, the lowest first, of byte c div 8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/site/address_pattern.h"

namespace vela::indexer {

// NumCatBytes for so many categories.
constexpr size_t CategoryBytes(size_t categories) { return (categories + 7) / 8; }

// The page's set of CategoryBytes bytes; empty without categories.
std::string CategorySet(const std::vector<CategoryRule>& categories, const PageAddresses& page);

// Adds the categories of `set` to `all`, a set of the same size.
void AddCategories(std::string_view set, std::string& all);

bool HasCategory(std::string_view set, size_t category);

}  // namespace vela::indexer
