// owned_array.h: the one owner of memory whose size comes from a file, a setting or a request.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <span>
#include <type_traits>
#include <utility>

#include "text/allocation.h"

namespace vela {

// A block of `count` zero-filled elements, freed with its owner. Move-only.
template <typename T>
class OwnedArray {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
  OwnedArray() = default;
  OwnedArray(OwnedArray&& other) noexcept
      : data_(std::exchange(other.data_, nullptr)), count_(std::exchange(other.count_, 0)) {}
  OwnedArray& operator=(OwnedArray&& other) noexcept {
    if (this != &other) {
      free(data_);
      data_ = std::exchange(other.data_, nullptr);
      count_ = std::exchange(other.count_, 0);
    }
    return *this;
  }
  OwnedArray(const OwnedArray&) = delete;
  OwnedArray& operator=(const OwnedArray&) = delete;
  ~OwnedArray() { free(data_); }

  // Replaces the block by one of `count` zeroed elements. False when the memory cannot be had; the
  // array is then empty. Zero elements are a success, too. The pages are touched on first use only.
  [[nodiscard]] bool TryAllocate(size_t count) {
    free(data_);
    data_ = nullptr;
    count_ = 0;
    if (count == 0) return true;
    if (count > SIZE_MAX / sizeof(T)) return false;
    data_ = static_cast<T*>(AllocateZeroed(count, sizeof(T)));
    if (data_ == nullptr) return false;
    count_ = count;
    return true;
  }

  // Resizes the block, keeping what fits; new elements are not initialised. On failure the block
  // stays as it was.
  [[nodiscard]] bool TryResize(size_t count) {
    if (count == 0 || count > SIZE_MAX / sizeof(T)) return false;
    void* grown = ResizeAllocation(data_, count * sizeof(T));
    if (grown == nullptr) return false;
    data_ = static_cast<T*>(grown);
    count_ = count;
    return true;
  }

  void Release() { *this = OwnedArray(); }

  T* data() { return data_; }
  const T* data() const { return data_; }
  size_t size() const { return count_; }
  bool empty() const { return count_ == 0; }
  T& operator[](size_t i) { return data_[i]; }
  const T& operator[](size_t i) const { return data_[i]; }
  T* begin() { return data_; }
  T* end() { return data_ + count_; }
  const T* begin() const { return data_; }
  const T* end() const { return data_ + count_; }

 private:
  T* data_ = nullptr;
  size_t count_ = 0;
};

}  // namespace vela
