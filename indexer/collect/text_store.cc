#include "indexer/collect/text_store.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "indexer/report/index_error.h"

namespace vela::indexer {

std::string_view TextStore::Keep(std::string_view text) {
  constexpr size_t kBlockBytes = size_t{256} << 10;
  if (text.empty()) return {};
  if (text.size() > left_) {
    const size_t bytes = std::max(kBlockBytes, text.size());
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(bytes));
    next_ = blocks_.back().get();
    left_ = bytes;
    memory_ += bytes;
  }
  char* const kept = next_;
  memcpy(kept, text.data(), text.size());
  next_ += text.size();
  left_ -= text.size();
  return {kept, text.size()};
}

void TextStore::Clear() {
  blocks_.clear();
  next_ = nullptr;
  left_ = memory_ = 0;
}

uint32_t PlacedTexts::Keep(std::string_view text) {
  if (text.empty()) return 0;
  if (next_ % kBlockBytes + text.size() > kBlockBytes) next_ = blocks_.size() * kBlockBytes;
  if (next_ + text.size() > std::numeric_limits<uint32_t>::max()) {
    throw IndexError(ExitStatus::kFailed,
                     "The site has more different words than one index can hold. Index its parts "
                     "into several folders.");
  }
  if (next_ + text.size() > blocks_.size() * kBlockBytes) {
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(kBlockBytes));
  }
  const auto place = static_cast<uint32_t>(next_);
  memcpy(blocks_[place / kBlockBytes].get() + place % kBlockBytes, text.data(), text.size());
  next_ += text.size();
  return place;
}

uint32_t TextNumbers::FindOrAdd(std::string_view text) {
  const auto isSame = [&](uint32_t number) { return IsSameText(texts_[number], text); };
  const uint32_t number = table_.FindOrAdd(TextHash(text), size(), isSame);
  if (number == size()) texts_.push_back(store_.Keep(text));
  return number;
}

void TextNumbers::Clear() {
  store_.Clear();
  texts_.clear();
  table_.Clear();
}

size_t TextNumbers::memory() const {
  return store_.memory() + texts_.capacity() * sizeof(std::string_view) + table_.memory();
}

}  // namespace vela::indexer
