// category_set.h: the set of categories that a page's addresses and language put it in.
//
// format/page_info.h draws the set.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/site/address_pattern.h"

namespace vela::indexer {

// The set, of CategorySetBytes bytes, of a page in that language; empty without categories.
std::string CategorySet(const std::vector<CategoryRule>& categories, const PageAddresses& page,
                        std::string_view language);

// Adds the categories of `set` to `all`, a set of the same size.
void AddCategories(std::string_view set, std::string& all);

bool HasCategory(std::string_view set, size_t category);

}  // namespace vela::indexer
