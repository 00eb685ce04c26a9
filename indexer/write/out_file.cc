#include "indexer/write/out_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

[[noreturn]] void Fail(const std::filesystem::path& path) {
  throw IndexError(ExitStatus::kFailed, "Cannot write " + path.string() + ": " + strerror(errno) +
                                            ". Check the permissions and the free space there.");
}

}  // namespace

OutFile::OutFile(const std::filesystem::path& path)
    : path_(path),
      buffer_(std::make_unique_for_overwrite<char[]>(kBufferBytes + sizeof(uint64_t))) {
  fd_ = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd_ < 0) Fail(path_);
}

OutFile::~OutFile() {
  if (fd_ >= 0) close(fd_);
}

// What does not fit into the rest of the buffer.
void OutFile::WriteMore(std::string_view bytes) {
  Flush();
  if (bytes.size() > kBufferBytes) return WriteOut(bytes);
  Write(bytes);
}

std::string OutFile::Read(uint64_t at, size_t bytes) {
  Flush();
  const int fd = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) Fail(path_);
  std::string out(bytes, '\0');
  size_t done = 0;
  ssize_t got = 0;
  do {
    got = pread(fd, out.data() + done, bytes - done, static_cast<off_t>(at + done));
    if (got > 0) done += static_cast<size_t>(got);
  } while (got > 0 || (got < 0 && errno == EINTR));
  const int error = errno;
  close(fd);
  if (got < 0) {
    errno = error;
    Fail(path_);
  }
  out.resize(done);
  return out;
}

void OutFile::Replace(uint64_t at, std::string_view bytes) {
  Flush();
  while (!bytes.empty()) {
    const ssize_t wrote = pwrite(fd_, bytes.data(), bytes.size(), static_cast<off_t>(at));
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote < 0) Fail(path_);
    at += static_cast<uint64_t>(wrote);
    bytes.remove_prefix(static_cast<size_t>(wrote));
  }
}

void OutFile::WriteOut(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t wrote = write(fd_, bytes.data(), bytes.size());
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote < 0) Fail(path_);
    written_ += static_cast<size_t>(wrote);
    bytes.remove_prefix(static_cast<size_t>(wrote));
  }
}

void OutFile::Flush() {
  WriteOut({buffer_.get(), used_});
  used_ = 0;
}

void OutFile::Close() {
  Flush();
  if (close(std::exchange(fd_, -1)) != 0) Fail(path_);
}

uint64_t OutFile::Finish() {
  Flush();
  const int fd = fd_;
  fd_ = -1;
  const bool synced = fsync(fd) == 0;
  const int error = errno;
  if (close(fd) != 0 || !synced) {
    if (!synced) errno = error;
    Fail(path_);
  }
  return written_;
}

}  // namespace vela::indexer
