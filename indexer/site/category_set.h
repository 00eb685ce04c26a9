// category_set.h: which of the owner's address patterns a page fits, and the set of categories that
// follows.
//
// The search program reads the set at TestCategory (src/search/filters.h): category c is bit
// c mod 8, the lowest first, of byte c div 8.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/config/site_config.h"

namespace vela::indexer {

constexpr size_t kMostCategories = 2000;

// NumCatBytes for so many categories.
constexpr size_t CategoryBytes(size_t categories) { return (categories + 7) / 8; }

// The addresses under which a page is known, and the site's own.
struct PageAddresses {
  std::string_view base;  // ends in "/"
  std::span<const std::string> all;
};

// A pattern as the owner wrote it, in the form in which FitsAddressPattern takes it: characters
// that are not plain in an address are percent-encoded. No page's address holds a "#", so that it
// means the character in a name.
std::string AddressPattern(std::string_view written);

// Whether the address fits the pattern, in which "*" stands for any run of characters and "?" for
// one. A pattern with "://" is compared with the whole address, one that begins with "/" with its
// path, any other with what stands behind `base`. The case of ASCII letters does not count.
bool FitsAddressPattern(std::string_view address, std::string_view base, std::string_view pattern);

// Whether one of the addresses fits one of the patterns.
bool FitsAnyPattern(const PageAddresses& page, const std::vector<std::string>& patterns);

// The page's set of CategoryBytes bytes; empty without categories.
std::string CategorySet(const std::vector<CategoryRule>& categories, const PageAddresses& page);

bool HasCategory(std::string_view set, size_t category);

}  // namespace vela::indexer
