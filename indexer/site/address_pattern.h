// address_pattern.h: which of the owner's address patterns a page fits.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vela::indexer {

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

}  // namespace vela::indexer
