#include "support/largest_allocation.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {
std::atomic<size_t> g_largest = SIZE_MAX;
}

// The forms for arrays, and those that do not throw, call these.
void* operator new(size_t bytes) {
  void* block = bytes > g_largest ? nullptr : malloc(bytes == 0 ? 1 : bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept { free(block); }
void operator delete(void* block, size_t) noexcept { free(block); }

namespace vela::support {

LargestAllocation::LargestAllocation(size_t bytes) { g_largest = bytes; }
LargestAllocation::~LargestAllocation() { g_largest = SIZE_MAX; }

}  // namespace vela::support
