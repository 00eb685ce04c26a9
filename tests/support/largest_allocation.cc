#include "support/largest_allocation.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> g_largest = SIZE_MAX;

void* Allocate(size_t bytes) {
  return bytes > g_largest ? nullptr : malloc(bytes == 0 ? 1 : bytes);
}

}  // namespace

// The forms for arrays call these.
void* operator new(size_t bytes) {
  void* block = Allocate(bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
// That of a sanitizer does not call the one above.
void* operator new(size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void operator delete(void* block) noexcept { free(block); }
void operator delete(void* block, size_t) noexcept { free(block); }

namespace vela::support {

LargestAllocation::LargestAllocation(size_t bytes) { g_largest = bytes; }
LargestAllocation::~LargestAllocation() { g_largest = SIZE_MAX; }

}  // namespace vela::support
