// canonical_addresses.h: under which address a page is indexed, which pages are copies, and which
// page stands for an address.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "indexer/report/reason.h"

namespace vela::indexer {

// The address below `base` that the page `own` names as its own (`canonical`: whole and encoded;
// empty: none), in the spelling of `base`; empty when it names none but the one it has. The only
// one beside `own` that CanonicalAddresses may choose for it.
std::string OtherAddress(const std::string& base, const std::string& own,
                         const std::string& canonical);

// Pages come one by one; what was decided for one holds when the next comes. A folder's address
// means the first page named "index." in it, unless a page has taken it for its own.
class CanonicalAddresses {
 public:
  // `base` is the site's address, ending in "/".
  explicit CanonicalAddresses(std::string base) : base_(std::move(base)) {}

  // An address of the site, made by PageAddress. All of them come before the first page.
  void AddItem(const std::string& address);

  // Settles the address of the page `own` that names `canonical` as its own (whole and encoded;
  // empty: none). A page of the site that is named so stays where it is; one elsewhere is an
  // original that visitors cannot be sent to, and the copy stays. kCopy: the page is left out for
  // another; of pages that name each other the last one stays.
  [[nodiscard]] Reason Choose(const std::string& own, const std::string& canonical,
                              std::string& address);

  // The address for which the page at `address` was left out as a copy; empty for another page.
  std::string OriginalOf(const std::string& address) const {
    const auto copy = copies_.find(address);
    return copy == copies_.end() ? std::string() : copy->second;
  }

  // Notes that `page`, a number in the index, stands for that address: it is its own, or that of a
  // page which says the same.
  void Note(const std::string& address, uint32_t page);

  // The page that stands for an address of the site, also when it is that of a page left out as a
  // copy. None before the page was noted.
  std::optional<uint32_t> PageAt(const std::string& address) const;

  // Calls `use(address, page)` for every address that a page stands for (PageAt), in any order;
  // for some of them twice.
  template <typename Use>
  void ForEachAddress(Use use) const {
    const auto useKeys = [&](const auto& table) {
      for (const auto& row : table) {
        if (const std::optional<uint32_t> page = PageAt(row.first)) use(row.first, *page);
      }
    };
    useKeys(pages_);
    useKeys(copies_);
    useKeys(indexPages_);
  }

 private:
  const std::string& ItemAt(const std::string& address) const;
  bool LeadsBack(const std::string& from, const std::string& own) const;

  std::string base_;
  // Of items, and canonical ones that no item has.
  std::unordered_map<std::string, std::optional<uint32_t>> pages_;
  std::unordered_map<std::string, std::string> copies_;      // left out, and of which address
  std::unordered_map<std::string, std::string> indexPages_;  // by the folder
};

}  // namespace vela::indexer
