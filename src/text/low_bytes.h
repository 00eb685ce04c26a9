// low_bytes.h: where the bytes up to a blank (0x00 to 0x20) stand in a text: those that end lines
// and part what stands on them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vela {

// The low bytes of the block of 64 bytes, or less at the end, that begins at `start` of the text:
// one bit a byte, the first byte the lowest.
uint64_t LowByteMarks(std::string_view text, size_t start);

// Gives their places one after another. The text outlives it. Kept in registers by whoever calls
// nothing with its address.
class LowBytes {
 public:
  explicit LowBytes(std::string_view text) : text_(text) { SkipTo(0); }

  // The place of the next one; the size of the text when there is none left.
  size_t Next() {
    while (marks_ == 0) {
      block_ += kBlock;
      if (block_ >= text_.size()) return text_.size();
      marks_ = LowByteMarks(text_, block_);
    }
    const size_t place = block_ + static_cast<size_t>(__builtin_ctzll(marks_));
    marks_ &= marks_ - 1;
    return place;
  }

  // Goes on with the first one at or behind `place`, which may lie behind those given already or
  // before them.
  void SkipTo(size_t place) {
    block_ = place - place % kBlock;
    marks_ = 0;
    if (block_ < text_.size())
      marks_ = LowByteMarks(text_, block_) & ~uint64_t{0} << place % kBlock;
  }

 private:
  static constexpr size_t kBlock = 64;

  std::string_view text_;
  size_t block_ = 0;
  uint64_t marks_ = 0;  // of the block, without those given
};

}  // namespace vela
