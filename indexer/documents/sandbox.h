// sandbox.h: what a process that reads documents gives up before it sees the first one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vela::indexer {

// Of one process.
struct SandboxLimits {
  uint64_t memory = uint64_t{2} << 30;  // bytes of address space
  uint64_t seconds = 600;               // of processor time
  uint64_t written = 0;                 // bytes of any file
};

// From here on the process can compute, read and write what it has open, and end: no file can be
// opened, no program started, no connection made, and nothing of that can be taken back. False when
// the system cannot do that.
[[nodiscard]] bool LockIn(const SandboxLimits& limits);

// Becomes the program of the absolute path, `arguments` with its name at their head: it can open
// files to read them besides, as it has to load its libraries and tables. Returns when that cannot
// be done.
void RunLockedIn(const std::string& program, const std::vector<std::string>& arguments,
                 const SandboxLimits& limits);

}  // namespace vela::indexer
