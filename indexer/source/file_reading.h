// file_reading.h: one file of the site, whole, within limits.
#pragma once

#include <cstdint>
#include <string>

namespace vela::indexer {

struct FileContent {
  std::string bytes;
  uint64_t size = 0;         // of the file
  int64_t modifiedTime = 0;  // seconds since 1970, UTC
};

// Reads `path`, which must be a regular file and no symbolic link, of at most `maxBytes` bytes.
// Returns an empty text, or the reason why the file is left out.
std::string ReadSiteFile(const std::string& path, uint64_t maxBytes, FileContent& out);

}  // namespace vela::indexer
