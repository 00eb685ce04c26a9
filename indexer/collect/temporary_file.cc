#include "indexer/collect/temporary_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

constexpr size_t kBufferBytes = size_t{128} << 10;

[[noreturn]] void Fail(const char* what, const std::filesystem::path& path) {
  throw IndexError(ExitStatus::kFailed, std::string("Cannot ") + what + " the temporary file " +
                                            path.string() + ": " + strerror(errno) +
                                            ". Check the free space there, or give more --memory.");
}

}  // namespace

TemporaryFile::~TemporaryFile() {
  if (fd_ >= 0) close(fd_);
}

void TemporaryFile::Append(std::string_view bytes) {
  if (buffer_.size() + bytes.size() > kBufferBytes) Flush();
  if (bytes.size() >= kBufferBytes) {
    Write(bytes);
  } else {
    buffer_ += bytes;
  }
}

void TemporaryFile::Write(std::string_view bytes) {
  if (fd_ < 0) {
    fd_ = open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd_ < 0) Fail("create", path_);
    unlink(path_.c_str());
  }
  while (!bytes.empty()) {
    const ssize_t wrote = write(fd_, bytes.data(), bytes.size());
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote < 0) Fail("write", path_);
    written_ += static_cast<size_t>(wrote);
    bytes.remove_prefix(static_cast<size_t>(wrote));
  }
}

void TemporaryFile::Flush() {
  if (!buffer_.empty()) Write(buffer_);
  buffer_.clear();
}

void TemporaryFile::Read(uint64_t at, std::span<char> bytes) {
  Flush();
  while (!bytes.empty()) {
    const ssize_t got = pread(fd_, bytes.data(), bytes.size(), static_cast<off_t>(at));
    if (got < 0 && errno == EINTR) continue;
    if (got == 0) errno = EIO;  // shorter than what was written
    if (got <= 0) Fail("read", path_);
    at += static_cast<size_t>(got);
    bytes = bytes.subspan(static_cast<size_t>(got));
  }
}

void TemporaryFile::Clear() {
  buffer_ = std::string();
  written_ = 0;
  if (fd_ >= 0) close(std::exchange(fd_, -1));
}

}  // namespace vela::indexer
