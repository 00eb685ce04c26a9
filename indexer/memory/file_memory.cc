#include "indexer/memory/file_memory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <utility>

namespace vela::indexer {

namespace {

// By which the file grows at least.
constexpr size_t kPieceBytes = size_t{4} << 20;

// `unit` is a power of two.
size_t RoundUp(size_t bytes, size_t unit) { return (bytes + unit - 1) & ~(unit - 1); }

}  // namespace

FileMemory::FileMemory(std::filesystem::path path) : path_(std::move(path)) {
  void* const start =
      mmap(nullptr, kMostBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (start != MAP_FAILED) start_ = static_cast<char*>(start);
}

FileMemory::~FileMemory() {
  if (start_ != nullptr) munmap(start_, kMostBytes);
  if (fd_ >= 0) close(fd_);
}

bool FileMemory::Open() {
  if (fd_ >= 0) return true;
  fd_ = open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (fd_ < 0) {
    failure_ = errno;
    return false;
  }
  unlink(path_.c_str());
  return true;
}

// Up to `bytes` at least.
bool FileMemory::Grow(size_t bytes) {
  if (bytes <= grown_) return true;
  if (!Open()) return false;
  const size_t more = RoundUp(bytes - grown_, kPieceBytes);
  struct rlimit limit = {};
  if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && grown_ + more > limit.rlim_cur) {
    failure_ = EFBIG;  // a signal would end the process
    return false;
  }
  // A mapped page without room on the disk would end the process when it is written.
  int result = EINTR;
  while (result == EINTR) {
    result = posix_fallocate(fd_, static_cast<off_t>(grown_), static_cast<off_t>(more));
  }
  if (result == 0 && mmap(start_ + grown_, more, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED,
                          fd_, static_cast<off_t>(grown_)) == MAP_FAILED) {
    result = errno;
  }
  if (result != 0) {
    failure_ = result;
    return false;
  }
  grown_ += more;
  return true;
}

void* FileMemory::Take(size_t bytes, size_t alignment) {
  if (start_ == nullptr) return nullptr;
  const std::scoped_lock lock(taking_);
  const auto base = reinterpret_cast<uintptr_t>(start_);
  const size_t from = RoundUp(base + taken_, alignment) - base;
  if (from > kMostBytes || bytes > kMostBytes - from) {
    failure_ = ENOMEM;
    return nullptr;
  }
  if (!Grow(from + bytes)) return nullptr;
  taken_ = from + bytes;
  return start_ + from;
}

bool FileMemory::Has(const void* address) const {
  const auto base = reinterpret_cast<uintptr_t>(start_);
  return start_ != nullptr && reinterpret_cast<uintptr_t>(address) - base < kMostBytes;
}

void FileMemory::LetGo(size_t from, size_t to) {
  to = std::min(to, size());
  if (from < to) madvise(start_ + from, to - from, MADV_DONTNEED);
}

}  // namespace vela::indexer
