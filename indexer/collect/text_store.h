// text_store.h: many short texts, kept without a block of memory for each, and their numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "indexer/collect/number_table.h"

namespace vela::indexer {

class TextStore {
 public:
  // The kept copy, which stays where it is until Clear.
  std::string_view Keep(std::string_view text);
  void Clear();
  size_t memory() const { return memory_; }

 private:
  std::vector<std::unique_ptr<char[]>> blocks_;
  char* next_ = nullptr;
  size_t left_ = 0;
  size_t memory_ = 0;
};

// Short texts, which take their bytes and nothing else: whoever asks for one knows its place and
// its length. Each has at most kBlockBytes.
class PlacedTexts {
 public:
  static constexpr size_t kBlockBytes = size_t{1} << 18;

  // Returns the place of the kept copy. Throws IndexError when there are 4 GB of them.
  uint32_t Keep(std::string_view text);
  std::string_view At(uint32_t place, size_t bytes) const {
    if (bytes == 0) return {};
    return {blocks_[place / kBlockBytes].get() + place % kBlockBytes, bytes};
  }
  size_t memory() const { return blocks_.size() * kBlockBytes; }

 private:
  std::vector<std::unique_ptr<char[]>> blocks_;
  uint64_t next_ = 0;
};

// Texts with numbers from 0 on, in the order in which they came first.
class TextNumbers {
 public:
  // Adds a text that is new: its number is then the former size().
  uint32_t FindOrAdd(std::string_view text);
  std::string_view operator[](uint32_t number) const { return texts_[number]; }
  // Brings into the processor's cache where the text is.
  void Prefetch(uint32_t number) const { __builtin_prefetch(&texts_[number]); }
  uint32_t size() const { return static_cast<uint32_t>(texts_.size()); }
  void Clear();
  size_t memory() const;

 private:
  TextStore store_;
  std::vector<std::string_view> texts_;
  NumberTable table_;
};

}  // namespace vela::indexer
