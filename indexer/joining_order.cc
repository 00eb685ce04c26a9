#include "indexer/joining_order.h"

namespace vela::indexer {

JoiningOrder::JoiningOrder(const ItemList& items, bool hasPictures) {
  if (!hasPictures) return;
  std::vector<uint32_t> pictures;
  uint32_t number = 0;
  for (const SourceItem& item : items) {
    (item.type == FileType::kPicture ? pictures : order_).push_back(number++);
  }
  order_.insert(order_.end(), pictures.begin(), pictures.end());
}

}  // namespace vela::indexer
