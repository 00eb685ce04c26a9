#include "support/failing_allocation.h"

#include <cstdlib>

#include "text/allocation.h"

namespace vela {

int32_t g_failAllocationNumber = 0;

namespace {

bool FailsNow() { return g_failAllocationNumber > 0 && --g_failAllocationNumber == 0; }

}  // namespace

void* AllocateZeroed(size_t count, size_t size) {
  return FailsNow() ? nullptr : calloc(count, size);
}

void* ResizeAllocation(void* block, size_t bytes) {
  return FailsNow() ? nullptr : realloc(block, bytes);
}

}  // namespace vela
