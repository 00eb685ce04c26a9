// canonical_addresses.h: under which address a page is indexed, and which pages are copies.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "indexer/report/reason.h"

namespace vela::indexer {

// Pages come one by one; what was decided for one holds when the next comes.
class CanonicalAddresses {
 public:
  // `base` is the site's address, ending in "/".
  explicit CanonicalAddresses(std::string base) : base_(std::move(base)) {}

  // An address of the site, made by PageAddress. All of them come before the first page.
  void AddItem(const std::string& address) { items_.insert(address); }

  // Settles the address of the page `own` that names `canonical` as its own (whole and encoded;
  // empty: none). A page of the site that is named so stays where it is; one elsewhere is an
  // original that visitors cannot be sent to, and the copy stays. kCopy: the page is left out for
  // another; of pages that name each other the last one stays.
  [[nodiscard]] Reason Choose(const std::string& own, const std::string& canonical,
                              std::string& address);

 private:
  bool LeadsBack(const std::string& from, const std::string& own) const;

  std::string base_;
  std::unordered_set<std::string> items_;
  std::unordered_set<std::string> used_;                 // canonical ones that no item has
  std::unordered_map<std::string, std::string> copies_;  // left out, and of which item
};

}  // namespace vela::indexer
