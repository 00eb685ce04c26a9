// largest_allocation.h: memory that has no room for large blocks, in tests that link it.
#pragma once

#include <cstddef>

namespace vela::support {

// While one exists, `new` throws std::bad_alloc for more than `bytes`.
class LargestAllocation {
 public:
  explicit LargestAllocation(size_t bytes);
  LargestAllocation(const LargestAllocation&) = delete;
  LargestAllocation& operator=(const LargestAllocation&) = delete;
  ~LargestAllocation();
};

}  // namespace vela::support
