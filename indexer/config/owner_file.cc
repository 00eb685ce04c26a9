#include "indexer/config/owner_file.h"

#include <filesystem>

#include "indexer/report/index_error.h"
#include "indexer/source/file_reading.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {
constexpr uint64_t kOwnerFileLimit = uint64_t{4} << 20;  // bytes
}

std::string ReadOwnersFile(const std::string& path, const std::string& option) {
  FileContent content;
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  const Reason reason =
      error ? Reason::kFileNotFound : ReadRegularFile(real.string(), kOwnerFileLimit, content);
  if (reason != Reason::kNone) {
    throw IndexError(ExitStatus::kFailed, "Cannot use " + path + " for " + option + ": " +
                                              std::string(ReasonText(reason)) +
                                              ". Check the path and its permissions.");
  }
  return std::move(content.bytes);
}

}  // namespace vela::indexer
