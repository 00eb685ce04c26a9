#include "indexer/site/canonical_addresses.h"

#include "indexer/site/address.h"

namespace vela::indexer {

namespace {

constexpr int kCopyStepLimit = 100;
constexpr uint32_t kNoPage = 0xFFFFFFFF;

constexpr uint64_t kFirstPrint = 0xCBF29CE484222325;

// The print of a text that goes on with `more`, of one that has the print `before`.
uint64_t PrintOn(uint64_t before, std::string_view more) {
  constexpr uint64_t kPrime = 0x100000001B3;
  for (const char c : more) before = (before ^ static_cast<unsigned char>(c)) * kPrime;
  return before;
}

}  // namespace

uint64_t AddressPrint(std::string_view address) { return PrintOn(kFirstPrint, address); }

std::string OtherAddress(const std::string& base, const std::string& own,
                         const std::string& canonical) {
  if (canonical.empty() || !IsBelow(canonical, base)) return {};
  std::string named = InSpellingOf(base, canonical);
  if (named == own) named.clear();
  return named;
}

uint32_t CanonicalAddresses::NameNumber(std::string_view name) {
  const auto [known, isNew] =
      nameNumbers_.try_emplace(std::string(name), static_cast<uint32_t>(names_.size()));
  if (isNew) names_.emplace_back(name);
  return known->second;
}

void CanonicalAddresses::AddItem(const std::string& address) {
  pages_.TryAdd(AddressPrint(address), kNoPage);
  const std::string folder = FolderOfIndexPage(address);
  if (folder.empty()) return;
  const std::string_view name = std::string_view(address).substr(folder.size());
  indexPages_.TryAdd(AddressPrint(folder), NameNumber(name));
}

// The address itself where it is known, else that of the folder's index page, else the address.
uint64_t CanonicalAddresses::ItemAt(uint64_t address) const {
  if (pages_.Find(address) != nullptr) return address;
  const uint32_t* name = indexPages_.Find(address);
  return name == nullptr ? address : PrintOn(address, names_[*name]);
}

// Whether `from` was left out as a copy of `own`, or of a copy of it: one of them must stay.
bool CanonicalAddresses::LeadsBack(uint64_t from, uint64_t own) const {
  const uint32_t* copy = copies_.Find(from);
  for (int step = 0; step < kCopyStepLimit && copy != nullptr; ++step) {
    const uint64_t original = originals_[*copy].original;
    if (original == own) return true;
    copy = copies_.Find(original);
  }
  return false;
}

Reason CanonicalAddresses::Choose(const std::string& own, const std::string& canonical,
                                  std::string& address) {
  address = own;
  std::string original = OtherAddress(base_, own, canonical);
  if (original.empty()) return Reason::kNone;
  uint64_t print = AddressPrint(original);
  // An index page may have its folder's address for its own.
  if (FolderOfIndexPage(own) != original && pages_.Find(print) == nullptr) {
    if (const uint32_t* name = indexPages_.Find(print)) {
      original += names_[*name];
      print = AddressPrint(original);
    }
  }
  if (pages_.TryAdd(print, kNoPage).second) {
    address = original;
    return Reason::kNone;
  }
  const uint64_t ownPrint = AddressPrint(own);
  if (LeadsBack(print, ownPrint)) return Reason::kNone;
  if (copies_.TryAdd(ownPrint, static_cast<uint32_t>(originals_.size())).second) {
    originals_.push_back({.original = print, .address = std::move(original)});
  }
  return Reason::kCopy;
}

std::string CanonicalAddresses::OriginalOf(const std::string& address) const {
  const uint32_t* copy = copies_.Find(AddressPrint(address));
  return copy == nullptr ? std::string() : originals_[*copy].address;
}

void CanonicalAddresses::Note(const std::string& address, uint32_t page) {
  const uint64_t print = AddressPrint(address);
  *pages_.TryAdd(print, page).first = page;
  const std::string folder = FolderOfIndexPage(address);
  if (folder.empty()) return;
  // The first index page of the folder that is not left out for a reason of its own.
  const uint32_t name = NameNumber(std::string_view(address).substr(folder.size()));
  const uint64_t folderPrint = AddressPrint(folder);
  uint32_t& indexPage = *indexPages_.TryAdd(folderPrint, name).first;
  const uint64_t known = PrintOn(folderPrint, names_[indexPage]);
  if (!PageAt(known).has_value() && copies_.Find(known) == nullptr) indexPage = name;
}

std::optional<uint32_t> CanonicalAddresses::PageAt(uint64_t address) const {
  uint64_t at = ItemAt(address);
  for (int step = 0; step < kCopyStepLimit; ++step) {
    const uint32_t* copy = copies_.Find(at);
    if (copy == nullptr) break;
    at = originals_[*copy].original;
  }
  const uint32_t* page = pages_.Find(at);
  return page == nullptr || *page == kNoPage ? std::nullopt : std::optional(*page);
}

size_t CanonicalAddresses::memory() const {
  constexpr size_t kAddressBytes = 64;  // of an original
  constexpr size_t kNameBytes = 150;    // of both tables of names
  return pages_.memory() + copies_.memory() + indexPages_.memory() +
         originals_.capacity() * (sizeof(Copy) + kAddressBytes) + names_.size() * kNameBytes;
}

}  // namespace vela::indexer
