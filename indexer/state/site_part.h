// site_part.h: a site that is read in parts, by several runs or machines, each of which keeps what
// it made of its share of the pages (page_state.h).
//
// A page belongs to the part that a fingerprint of its path gives: it stays there when other pages
// come and go, so that each part reads only what has changed. Every part lists the whole site, and
// what it notes of the list tells whether parts belong together.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/source/fingerprint.h"
#include "indexer/source/source.h"

namespace vela::indexer {

constexpr uint32_t kPartLimit = 1000;

// One of `count` parts, from 1 on.
struct PartNumber {
  uint32_t number = 1;
  uint32_t count = 1;
};

// "2/7"; none for anything else, also for more parts than kPartLimit.
std::optional<PartNumber> ReadPartNumber(std::string_view text);

// What a look at some pages has told, for what the configuration leaves to the pages.
struct SiteLook {
  std::map<std::string, size_t, std::less<>> languages;  // pages by the code of their language
  SiteHabits habits;
  std::vector<std::string> repeatedTexts;  // some of what is left out, for the owner to see
};

// What a part knows of the whole site.
struct PartNotes {
  PartNumber part;
  Fingerprint list;  // ListFingerprint
  std::string base;  // the site's address
  SiteLook look;
  SiteListing listing;  // without items
};

// Of all items of the list, told by their ItemFingerprints in their order.
class ListFingerprint {
 public:
  void Add(uint64_t item) { all_.Add(item); }
  Fingerprint Finish() const { return all_.Finish(); }

 private:
  FingerprintOfAll all_;
};

Fingerprint ListFingerprintOf(const ItemList& items);

// Leaves the items of the part.
void KeepPart(const PartNumber& part, ItemList& items);

std::string PartText(const PartNotes& notes);
// False when `text` is not what PartText makes; `notes` are then empty.
[[nodiscard]] bool ReadPartText(std::string_view text, PartNotes& notes);

}  // namespace vela::indexer
