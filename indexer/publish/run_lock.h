// run_lock.h: one run at a time for an index.
#pragma once

#include <filesystem>

namespace vela::indexer {

enum class LockStatus {
  kHeld = 0,
  kBusy,    // another process holds it
  kFailed,  // the file cannot be opened or locked; errno says why
};

// Holds a lock file from TryTake to Release or its own end. The system lets go of the lock when the
// process ends, however it ends; the file that is then left is in nobody's way.
class RunLock {
 public:
  RunLock() = default;
  ~RunLock() { Release(); }
  RunLock(const RunLock&) = delete;
  RunLock& operator=(const RunLock&) = delete;

  // Makes the file when it is missing and locks it; its folder must exist. Does not wait.
  [[nodiscard]] LockStatus TryTake(const std::filesystem::path& file);
  // Removes the file and lets go.
  void Release();

 private:
  std::filesystem::path file_;
  int descriptor_ = -1;
};

}  // namespace vela::indexer
