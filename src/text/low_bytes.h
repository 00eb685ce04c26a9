// low_bytes.h: where the bytes up to a blank (0x00 to 0x20) stand in a text: those that end lines
// and part what stands on them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vela {

// Gives their places one after another. The text outlives it.
class LowBytes {
 public:
  explicit LowBytes(std::string_view text) : text_(text) { SkipTo(0); }

  // The place of the next one; the size of the text when there is none left.
  size_t Next() {
    while (marks_ == 0) {
      block_ += kBlock;
      if (block_ >= text_.size()) return text_.size();
      marks_ = MarksOf(block_);
    }
    const size_t place = block_ + static_cast<size_t>(__builtin_ctzll(marks_));
    marks_ &= marks_ - 1;
    return place;
  }

  // Goes on with the first one at or behind `place`, which may lie behind those given already or
  // before them.
  void SkipTo(size_t place);

 private:
  static constexpr size_t kBlock = 64;

  // One bit a byte of the block that begins at `start`, the first byte the lowest.
  uint64_t MarksOf(size_t start) const;

  std::string_view text_;
  size_t block_ = 0;
  uint64_t marks_ = 0;  // of the block, without those given
};

}  // namespace vela
