// text_list.h: a growing list of texts in one block.
#pragma once

#include <cstdint>
#include <string_view>

#include "text/owned_array.h"

namespace vela {

// Owns its texts. Each is NUL-terminated; a NUL inside a text ends it early.
class TextList {
 public:
  // Adds a copy at the end; false when memory is out, the list then is as before.
  [[nodiscard]] bool TryAdd(std::string_view text);

  // Keeps the first `count` texts, at most.
  void Truncate(int32_t count) { count_ = count < count_ ? count : count_; }

  int32_t size() const { return count_; }
  // The text number `i` (0 up to size() - 1); valid until the next TryAdd.
  const char* At(int32_t i) const { return bytes_.data() + starts_[static_cast<size_t>(i)]; }

  void Release() { *this = TextList(); }

 private:
  OwnedArray<char> bytes_;
  OwnedArray<uint32_t> starts_;
  size_t used_ = 0;
  int32_t count_ = 0;
};

}  // namespace vela
