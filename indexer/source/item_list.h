// item_list.h: the items of a source, in a few bytes each: a site may have millions.
//
// A path is kept as what differs from the one before, an address as what its path does not say.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "indexer/source/source_item.h"

namespace vela::indexer {

// Items with numbers from 0 on. Any number of threads may read it at once.
class ItemList {
 public:
  // Goes through the list, each item unpacked once.
  class Iterator {
   public:
    const SourceItem& operator*() const { return item_; }
    const SourceItem* operator->() const { return &item_; }
    Iterator& operator++();
    bool operator==(const Iterator& other) const { return number_ == other.number_; }

   private:
    friend class ItemList;
    Iterator(const ItemList& list, size_t number);

    const ItemList* list_;
    size_t number_;
    size_t next_ = 0;  // where the item behind this one stands
    SourceItem item_;
  };

  void Add(const SourceItem& item);
  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  SourceItem operator[](size_t number) const;
  Iterator begin() const { return {*this, 0}; }
  Iterator end() const { return {*this, size_}; }
  // Bytes that it takes, nearly.
  size_t memory() const { return bytes_.capacity() + groups_.capacity() * sizeof(uint64_t); }

  // Brings the items into the ascending byte order of their paths. Costs nothing where they were
  // added in it; else all are unpacked for a moment.
  void SortByPath();

  // Leaves out those for which `keep(item)` does not hold.
  template <typename Keep>
  void KeepIf(Keep keep) {
    ItemList kept;
    for (const SourceItem& item : *this) {
      if (keep(item)) kept.Add(item);
    }
    *this = std::move(kept);
  }

 private:
  size_t Unpack(size_t at, SourceItem& item) const;
  void AppendText(std::string_view text);
  std::string_view TextAt(size_t& at) const;

  std::string base_;              // before the paths in most addresses
  std::string bytes_;             // of all items
  std::vector<uint64_t> groups_;  // where each group of them begins, whose first needs no other
  SourceItem last_;
  size_t size_ = 0;
  bool isSorted_ = true;
};

}  // namespace vela::indexer
