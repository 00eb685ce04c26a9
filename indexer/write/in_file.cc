#include "indexer/write/in_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "indexer/report/index_error.h"

namespace vela::indexer {

InFile::InFile(const std::filesystem::path& path)
    : path_(path), fd_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}

InFile::~InFile() {
  if (fd_ >= 0) close(fd_);
}

std::string_view InFile::Read(uint64_t at, size_t bytes) {
  if (fd_ < 0) return {};
  if (piece_.size() < bytes) piece_.resize(bytes);
  size_t done = 0;
  while (done < bytes) {
    const ssize_t got =
        pread(fd_, piece_.data() + done, bytes - done, static_cast<off_t>(at + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      throw IndexError(ExitStatus::kFailed, "Cannot read " + path_.string() + ": " +
                                                strerror(errno) + ". Check the disk it lies on.");
    }
    if (got == 0) break;
    done += static_cast<size_t>(got);
  }
  return std::string_view(piece_).substr(0, done);
}

}  // namespace vela::indexer
