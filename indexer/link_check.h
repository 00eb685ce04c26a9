// link_check.h: which links between the pages of a site lead nowhere (--check-links).
#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "indexer/extract/page_anchors.h"
#include "indexer/report/broken_link.h"
#include "indexer/site/canonical_addresses.h"
#include "indexer/source/source.h"

namespace vela::indexer {

// What is asked of the site.
struct LinkedSite {
  std::string base;              // its address, ending in "/"
  std::filesystem::path folder;  // empty for one that does not lie in a folder
};

// The links and places of an item; none where it cannot have any.
std::optional<PageAnchors> AnchorsOfItem(const SourceItem& item, const FileContent& file);

class LinkCheck {
 public:
  // `listing` is of the site's source and outlives this.
  LinkCheck(LinkedSite site, const SiteListing& listing);

  // Takes the links of an item of the listing, and the places on it. Any number of threads may call
  // it at once, in any order. Throws std::bad_alloc.
  void AddPage(const SourceItem& item, PageAnchors anchors);

  // When all pages were added and have their addresses.
  BrokenLinks Finish(const CanonicalAddresses& addresses);

 private:
  struct Candidate {
    uint32_t item = 0;
    std::string address;   // of the site
    std::string fragment;  // decoded; empty for none
    std::string text;
  };
  uint32_t ItemAt(const std::string& address) const;
  bool IsThere(const std::string& address) const;

  LinkedSite site_;
  const SiteListing& listing_;
  std::unordered_map<std::string, uint32_t> items_;  // by their addresses
  std::unordered_set<std::string> gone_;             // addresses
  std::vector<bool> hasPlaces_;                      // of the items: their places are known
  std::vector<size_t> places_;                       // sorted in Finish
  std::vector<Candidate> candidates_;
  uint64_t checked_ = 0;
  std::mutex mutex_;  // of all that AddPage changes
};

}  // namespace vela::indexer
