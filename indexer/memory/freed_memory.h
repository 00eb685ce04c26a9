// freed_memory.h: memory that a run has let go of, and the allocator still holds.
#pragma once

namespace vela::indexer {

// Gives it back to the system. After a step that takes much of which the next has no use; costs
// what bringing such memory in again would.
void ReturnFreedMemory();

}  // namespace vela::indexer
