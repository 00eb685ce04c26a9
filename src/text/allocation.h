// allocation.h: the two calls through which memory of a size from outside is had. Programs link
// allocation.cc; tests of what happens without memory link their own definitions instead.
#pragma once

#include <cstddef>

namespace vela {

// A block of `count` zeroed elements of `size` bytes, released by free(); the product fits size_t.
// Null when memory is out.
[[nodiscard]] void* AllocateZeroed(size_t count, size_t size);

// The block (or null for a new one) with `bytes` bytes, at least 1; what is added is not
// initialised. Null when memory is out; the block then stays as it was.
[[nodiscard]] void* ResizeAllocation(void* block, size_t bytes);

}  // namespace vela
