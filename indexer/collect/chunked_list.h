// chunked_list.h: a list that grows without being copied, and so never takes twice what it holds.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace vela::indexer {

template <typename T>
class ChunkedList {
 public:
  // The new element stays where it is.
  void push_back(const T& value) {
    if (size_ % kChunk == 0) chunks_.push_back(std::make_unique<T[]>(kChunk));
    (*this)[size_++] = value;
  }
  T& operator[](size_t i) { return chunks_[i / kChunk][i % kChunk]; }
  const T& operator[](size_t i) const { return chunks_[i / kChunk][i % kChunk]; }
  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  // Bytes that it takes, nearly.
  size_t memory() const { return chunks_.size() * kChunk * sizeof(T); }

 private:
  static constexpr size_t kChunk = size_t{1} << 13;
  std::vector<std::unique_ptr<T[]>> chunks_;
  size_t size_ = 0;
};

}  // namespace vela::indexer
