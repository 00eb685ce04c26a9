#include "indexer/write/out_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

constexpr size_t kBufferBytes = 128 * 1024;

[[noreturn]] void Fail(const std::filesystem::path& path) {
  throw IndexError(ExitStatus::kFailed, "Cannot write " + path.string() + ": " + strerror(errno) +
                                            ". Check the permissions and the free space there.");
}

std::array<char, sizeof(uint64_t)> LittleEndian(uint64_t value) {
  std::array<char, sizeof(uint64_t)> bytes;
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(value >> (8 * i) & 0xFF);
  return bytes;
}

}  // namespace

OutFile::OutFile(const std::filesystem::path& path) : path_(path) {
  fd_ = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd_ < 0) Fail(path_);
  buffer_.reserve(kBufferBytes);
}

OutFile::~OutFile() {
  if (fd_ >= 0) close(fd_);
}

void OutFile::Write(std::string_view bytes) {
  if (buffer_.size() + bytes.size() > kBufferBytes) Flush();
  buffer_ += bytes;
  if (buffer_.size() >= kBufferBytes) Flush();
}

void OutFile::WriteNumber(uint64_t value, size_t bytes) {
  Write(std::string_view(LittleEndian(value).data(), bytes));
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

void OutFile::Flush() {
  size_t done = 0;
  while (done < buffer_.size()) {
    const ssize_t wrote = write(fd_, buffer_.data() + done, buffer_.size() - done);
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote < 0) Fail(path_);
    done += static_cast<size_t>(wrote);
  }
  written_ += done;
  buffer_.clear();
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
