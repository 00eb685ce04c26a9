// memory_plan.h: how the memory that a run may take is divided.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela::indexer {

// In bytes.
struct MemoryPlan {
  size_t collection = 0;  // what grows with the site: words, postings, texts of links
  size_t waiting = 0;     // blocks that are ready before their turn
  size_t known = 0;       // what one thread keeps of the pages before (BlockInput)
  size_t ordinary = 0;    // what the process may hold before more comes from a file (MemoryKeeper)
  size_t resident = 0;    // what it may hold at all, with what the file has in memory
};

// Of `bytes` for all, with so many threads that read pages. What one page takes while it is read is
// not in it.
MemoryPlan PlanMemory(uint64_t bytes, unsigned jobs);

}  // namespace vela::indexer
