// memory_keeper.h: keeps the process within the memory that its owner allows, whatever the size of
// the site.
#pragma once

#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <thread>

#include "indexer/memory/memory_plan.h"

namespace vela::indexer {

struct FiledMemory;

// From the time on when the process holds `plan.ordinary`, its allocator gets what more it needs
// from a file without a name in `folder` (file_memory.h). When the process holds `plan.resident`, a
// thread lets go of that, piece by piece: what is still used comes back from the system's cache or
// the disk. On a machine so busy that this thread waits for its turn, the process may hold more for
// a moment.
//
// The first of a process does so; for any other, and where the program is linked with another
// allocator, everything stays in ordinary memory. What the file holds is used until the process
// ends, and lies there until then.
class MemoryKeeper {
 public:
  MemoryKeeper(const std::filesystem::path& folder, const MemoryPlan& plan);
  ~MemoryKeeper();
  MemoryKeeper(const MemoryKeeper&) = delete;
  MemoryKeeper& operator=(const MemoryKeeper&) = delete;

  // Throws IndexError (failed) once the file could not take what was asked of it. The allocator has
  // then gone on with ordinary memory.
  void Check() const;

 private:
  void Keep(const MemoryPlan& plan);

  FiledMemory* filed_ = nullptr;  // not owned; null: there is nothing to do
  std::mutex ending_;
  std::condition_variable ended_;
  bool isOver_ = false;
  std::thread thread_;
};

}  // namespace vela::indexer
