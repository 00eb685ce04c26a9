// canonical_addresses.h: under which address a page is indexed, which pages are copies, and which
// page stands for an address.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "indexer/report/reason.h"
#include "indexer/site/print_table.h"

namespace vela::indexer {

// The address below `base` that the page `own` names as its own (`canonical`: whole and encoded;
// empty: none), in the spelling of `base`; empty when it names none but the one it has. The only
// one beside `own` that CanonicalAddresses may choose for it.
std::string OtherAddress(const std::string& base, const std::string& own,
                         const std::string& canonical);

// By which addresses are known (FNV-1a).
uint64_t AddressPrint(std::string_view address);

// Pages come one by one; what was decided for one holds when the next comes. A folder's address
// means the first page named "index." in it, unless a page has taken it for its own. Of an address
// its print stays in memory, of a copy the address of the original besides.
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
  std::string OriginalOf(const std::string& address) const;

  // Notes that `page`, a number in the index, stands for that address: it is its own, or that of a
  // page which says the same.
  void Note(const std::string& address, uint32_t page);

  // The page that stands for an address of the site, also when it is that of a page left out as a
  // copy. None before the page was noted.
  std::optional<uint32_t> PageAt(std::string_view address) const {
    return PageAt(AddressPrint(address));
  }
  // The same for whoever knows the address by its print.
  std::optional<uint32_t> PageAt(uint64_t address) const;

  // Bytes that it takes, nearly.
  size_t memory() const;

 private:
  // A page that was left out, by what it is a copy of.
  struct Copy {
    uint64_t original = 0;
    std::string address;  // of the original
  };

  uint64_t ItemAt(uint64_t address) const;
  bool LeadsBack(uint64_t from, uint64_t own) const;
  uint32_t NameNumber(std::string_view name);

  std::string base_;
  // Of items, and canonical ones that no item has: the page, or kNoPage.
  PrintTable<uint32_t> pages_;
  PrintTable<uint32_t> copies_;  // those left out, by their places in the next
  std::vector<Copy> originals_;
  PrintTable<uint32_t> indexPages_;  // by the folder, the number of a name
  std::vector<std::string> names_;   // of index pages: "index.html"
  std::unordered_map<std::string, uint32_t> nameNumbers_;
};

}  // namespace vela::indexer
