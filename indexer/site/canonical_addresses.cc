#include "indexer/site/canonical_addresses.h"

#include "indexer/site/address.h"

namespace vela::indexer {

namespace {
constexpr int kCopyStepLimit = 100;
}  // namespace

std::string OtherAddress(const std::string& base, const std::string& own,
                         const std::string& canonical) {
  if (canonical.empty() || !IsBelow(canonical, base)) return {};
  std::string named = InSpellingOf(base, canonical);
  if (named == own) named.clear();
  return named;
}

void CanonicalAddresses::AddItem(const std::string& address) {
  pages_.try_emplace(address);
  const std::string folder = FolderOfIndexPage(address);
  if (!folder.empty()) indexPages_.try_emplace(folder, address);
}

// The address itself where it is known, else that of the folder's index page, else the address.
const std::string& CanonicalAddresses::ItemAt(const std::string& address) const {
  if (pages_.contains(address)) return address;
  const auto indexPage = indexPages_.find(address);
  return indexPage == indexPages_.end() ? address : indexPage->second;
}

// Whether `from` was left out as a copy of `own`, or of a copy of it: one of them must stay.
bool CanonicalAddresses::LeadsBack(const std::string& from, const std::string& own) const {
  auto copy = copies_.find(from);
  for (int step = 0; step < kCopyStepLimit && copy != copies_.end(); ++step) {
    if (copy->second == own) return true;
    copy = copies_.find(copy->second);
  }
  return false;
}

Reason CanonicalAddresses::Choose(const std::string& own, const std::string& canonical,
                                  std::string& address) {
  address = own;
  const std::string named = OtherAddress(base_, own, canonical);
  if (named.empty()) return Reason::kNone;
  // An index page may have its folder's address for its own.
  const std::string original = FolderOfIndexPage(own) == named ? named : ItemAt(named);
  if (pages_.try_emplace(original).second) {
    address = original;
    return Reason::kNone;
  }
  if (LeadsBack(original, own)) return Reason::kNone;
  copies_.emplace(own, original);
  return Reason::kCopy;
}

void CanonicalAddresses::Note(const std::string& address, uint32_t page) {
  pages_[address] = page;
  const std::string folder = FolderOfIndexPage(address);
  if (folder.empty()) return;
  // The first index page of the folder that is not left out for a reason of its own.
  std::string& indexPage = indexPages_[folder];
  if (!PageAt(indexPage).has_value() && !copies_.contains(indexPage)) indexPage = address;
}

std::optional<uint32_t> CanonicalAddresses::PageAt(const std::string& address) const {
  const std::string* at = &ItemAt(address);
  for (int step = 0; step < kCopyStepLimit; ++step) {
    const auto copy = copies_.find(*at);
    if (copy == copies_.end()) break;
    at = &copy->second;
  }
  const auto page = pages_.find(*at);
  return page == pages_.end() ? std::nullopt : page->second;
}

}  // namespace vela::indexer
