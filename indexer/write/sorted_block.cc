#include "indexer/write/sorted_block.h"

#include <algorithm>

namespace vela::indexer {

static_assert(kLookupTextLimit + 3 + 5 <= kLookupBlockRoom);

bool SortedBlock::Add(std::string_view text, uint32_t word, bool isVariant) {
  const auto shared =
      static_cast<size_t>(std::ranges::mismatch(former_, text).in1 - former_.begin());
  const std::string_view added = text.substr(shared);
  const size_t recent = recent_.Before(word);
  const size_t inForm = std::min(added.size(), kLookupAddedMost);
  std::string entry;
  entry += static_cast<char>(shared);
  entry += static_cast<char>(recent << kLookupRecentShift | (isVariant ? kLookupVariantBit : 0) |
                             inForm);
  if (inForm == kLookupAddedMost) entry += static_cast<char>(added.size() - inForm);
  entry += added;
  if (recent == kLookupRecentWords) {
    uint32_t number = word;
    for (; number >= 0x80; number >>= 7) entry += static_cast<char>(number | 0x80);
    entry += static_cast<char>(number);
  }
  if (entry.size() > kLookupBlockRoom - content_.size()) return false;
  content_ += entry;
  former_ = text;
  if (recent == kLookupRecentWords) {
    recent_.Add(word);
  } else {
    recent_.TakeNext(recent);
  }
  return true;
}

void SortedBlock::Clear() {
  content_.clear();
  former_.clear();
  recent_ = {};
}

}  // namespace vela::indexer
