// joining_order.h: in which order the items of a site join its index.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "indexer/source/item_list.h"

namespace vela::indexer {

// That of the list; but pictures come last, as they are found by what the pages say of them.
class JoiningOrder {
 public:
  // `hasPictures`: some of the items may be pictures.
  JoiningOrder(const ItemList& items, bool hasPictures);

  // The number of the item that is the one at `place`, both below the number of items.
  size_t operator[](size_t place) const { return order_.empty() ? place : order_[place]; }

 private:
  std::vector<uint32_t> order_;  // empty: that of the list
};

}  // namespace vela::indexer
