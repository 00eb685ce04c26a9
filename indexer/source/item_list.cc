#include "indexer/source/item_list.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

namespace vela::indexer {

namespace {

// Each is unpacked behind those before it in its group.
constexpr size_t kGroupItems = 16;

// What stands first of an item; the type is in the bits below.
constexpr uint8_t kHasAddress = 0x80;  // it is not base and path
constexpr uint8_t kHasFile = 0x40;
constexpr uint8_t kIsXml = 0x20;
constexpr uint8_t kHasMediaType = 0x10;  // another one than the item before
constexpr uint8_t kTypeBits = 0x0F;
static_assert(kFileTypeCount <= kTypeBits + 1);

size_t SharedBytes(std::string_view a, std::string_view b) {
  const size_t most = std::min({a.size(), b.size(), size_t{std::numeric_limits<uint8_t>::max()}});
  const auto differ = std::mismatch(a.begin(), a.begin() + static_cast<ptrdiff_t>(most), b.begin());
  return static_cast<size_t>(differ.first - a.begin());
}

bool IsPathBelow(std::string_view address, std::string_view base, std::string_view path) {
  return address.size() == base.size() + path.size() && address.starts_with(base) &&
         address.ends_with(path);
}

}  // namespace

void ItemList::AppendText(std::string_view text) {
  char length[sizeof(uint32_t)];
  const auto size = static_cast<uint32_t>(text.size());
  memcpy(length, &size, sizeof length);
  bytes_.append(length, sizeof length).append(text);
}

std::string_view ItemList::TextAt(size_t& at) const {
  uint32_t size = 0;
  memcpy(&size, bytes_.data() + at, sizeof size);
  const std::string_view text(bytes_.data() + at + sizeof size, size);
  at += sizeof size + size;
  return text;
}

void ItemList::Add(const SourceItem& item) {
  if (size_ == 0 && item.address.ends_with(item.path)) {
    base_ = item.address.substr(0, item.address.size() - item.path.size());
  }
  isSorted_ = isSorted_ && (size_ == 0 || last_.path <= item.path);
  if (size_ % kGroupItems == 0) {
    groups_.push_back(bytes_.size());
    last_ = SourceItem();
  }
  const bool hasAddress = !IsPathBelow(item.address, base_, item.path);
  const bool hasMediaType = item.mediaType != last_.mediaType;
  bytes_ += static_cast<char>(static_cast<uint8_t>(item.type) | (hasAddress ? kHasAddress : 0) |
                              (item.file.empty() ? 0 : kHasFile) | (item.isXml ? kIsXml : 0) |
                              (hasMediaType ? kHasMediaType : 0));
  const size_t shared = SharedBytes(last_.path, item.path);
  bytes_ += static_cast<char>(shared);
  AppendText(std::string_view(item.path).substr(shared));
  if (hasAddress) AppendText(item.address);
  if (!item.file.empty()) AppendText(item.file);
  if (hasMediaType) AppendText(item.mediaType);
  last_ = item;
  ++size_;
}

// Unpacks the item that stands at `at`. `item` is the one before it, or an empty one where a group
// begins. Returns where the next one stands.
size_t ItemList::Unpack(size_t at, SourceItem& item) const {
  const auto bits = static_cast<uint8_t>(bytes_[at++]);
  item.path.resize(static_cast<uint8_t>(bytes_[at++]));
  item.path += TextAt(at);
  item.type = static_cast<FileType>(bits & kTypeBits);
  item.isXml = (bits & kIsXml) != 0;
  if ((bits & kHasAddress) != 0) {
    item.address = TextAt(at);
  } else {
    item.address.assign(base_).append(item.path);
  }
  item.file = (bits & kHasFile) != 0 ? TextAt(at) : std::string_view();
  if ((bits & kHasMediaType) != 0) item.mediaType = TextAt(at);
  return at;
}

SourceItem ItemList::operator[](size_t number) const {
  SourceItem item;
  size_t at = groups_[number / kGroupItems];
  for (size_t i = number / kGroupItems * kGroupItems; i <= number; ++i) at = Unpack(at, item);
  return item;
}

ItemList::Iterator::Iterator(const ItemList& list, size_t number) : list_(&list), number_(number) {
  if (number_ < list.size()) next_ = list.Unpack(next_, item_);
}

ItemList::Iterator& ItemList::Iterator::operator++() {
  ++number_;
  if (number_ % kGroupItems == 0) item_ = SourceItem();
  if (number_ < list_->size()) next_ = list_->Unpack(next_, item_);
  return *this;
}

void ItemList::SortByPath() {
  if (isSorted_) return;
  std::vector<SourceItem> items;
  items.reserve(size_);
  for (const SourceItem& item : *this) items.push_back(item);
  // std::string compares as unsigned bytes, so the order does not depend on the locale.
  std::ranges::stable_sort(items, {}, &SourceItem::path);
  ItemList sorted;
  for (const SourceItem& item : items) sorted.Add(item);
  *this = std::move(sorted);
}

}  // namespace vela::indexer
