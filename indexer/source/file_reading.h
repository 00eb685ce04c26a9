// file_reading.h: one file, whole, within a limit.
#pragma once

#include <cstdint>
#include <string>

#include "indexer/report/reason.h"

namespace vela::indexer {

struct FileContent {
  std::string bytes;
  uint64_t size = 0;         // of the file
  int64_t modifiedTime = 0;  // seconds since 1970, UTC; 0: not known
  std::string charset = {};  // that its server gives, in lower case; empty for files
};

// Reads `path`, which must be a regular file and no symbolic link, of at most `limit` bytes.
// What it holds is in `out` when kNone is returned. Throws std::bad_alloc when there is no memory.
[[nodiscard]] Reason ReadRegularFile(const std::string& path, uint64_t limit, FileContent& out);

}  // namespace vela::indexer
