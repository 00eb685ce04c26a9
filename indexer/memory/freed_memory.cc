#include "indexer/memory/freed_memory.h"

#include <malloc.h>

#include <cstddef>

// Of the allocator that vela_index is linked with; null in what is linked with the C library's
// alone.
extern "C" int mallctl(const char* name, void* old, size_t* oldSize, void* given, size_t givenSize)
    __attribute__((weak));

namespace vela::indexer {

void ReturnFreedMemory() {
  if (mallctl == nullptr) {
    malloc_trim(0);
    return;
  }
  mallctl("thread.tcache.flush", nullptr, nullptr, nullptr, 0);
  mallctl("arena.4096.purge", nullptr, nullptr, nullptr, 0);  // 4096: all of them
}

}  // namespace vela::indexer
