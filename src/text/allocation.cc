#include "text/allocation.h"

#include <cstdlib>

namespace vela {

void* AllocateZeroed(size_t count, size_t size) { return calloc(count, size); }

void* ResizeAllocation(void* block, size_t bytes) { return realloc(block, bytes); }

}  // namespace vela
