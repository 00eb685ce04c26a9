// failing_allocation.h: memory that runs out when a test says so. Takes the place of the program's
// own allocation (text/allocation.h) in the tests that link it.
#pragma once

#include <cstdint>

namespace vela {

// Makes the n-th allocation from here on fail (1: the next one), and counts down to it; 0 fails
// none. Set back to 0 at the end of a test that may not reach its number.
extern int32_t g_failAllocationNumber;

}  // namespace vela
