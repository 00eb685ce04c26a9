#include "indexer/memory/memory_keeper.h"

#include <gtest/gtest.h>

#include "indexer/report/index_error.h"
#include "support/scratch_directory.h"

namespace vela::indexer {
namespace {

// Tests have the allocator of the C library; memory_test.py tries the other one.
TEST(MemoryKeeper, LeavesAnotherAllocatorAlone) {
  const support::ScratchDirectory scratch;
  for (int i = 0; i < 2; ++i) {
    const MemoryKeeper keeper(scratch.path() / "none", {.ordinary = 1, .resident = 1});
    EXPECT_NO_THROW(keeper.Check());
  }
  EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

}  // namespace
}  // namespace vela::indexer
