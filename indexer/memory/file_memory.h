// file_memory.h: memory that lies in a file without a name, so that the process need not hold it.
//
// The system writes such memory to the disk when it is short of it, and brings it back when it is
// used; ordinary memory it can only take away with the process.
#pragma once

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <mutex>

namespace vela::indexer {

// What was taken stays until the process ends. Any thread may call everything here, also within
// an allocator: nothing allocates but the constructor.
class FileMemory {
 public:
  // What can be taken of one: more than any index needs. Addresses alone, which cost nothing.
  static constexpr size_t kMostBytes = size_t{64} << 30;

  // The file is of that name for a moment, when memory is taken first.
  explicit FileMemory(std::filesystem::path path);
  // Gives all of it back, which nobody uses any more.
  ~FileMemory();
  FileMemory(const FileMemory&) = delete;
  FileMemory& operator=(const FileMemory&) = delete;

  // So many bytes of zeros on an address that `alignment`, a power of two, divides. Room on the
  // disk is theirs, so that writing to them cannot fail. Null when there is none: see failure().
  void* Take(size_t bytes, size_t alignment);
  bool Has(const void* address) const;

  // Of all that was taken, the bytes between two distances from its start: they leave the process,
  // not the file.
  void LetGo(size_t from, size_t to);
  // Bytes that were taken, with what lies between them.
  size_t size() const { return taken_; }

  // The system's number of what went wrong with the file when Take gave nothing; 0 for nothing.
  int failure() const { return failure_; }
  const std::filesystem::path& path() const { return path_; }

 private:
  bool Open();
  bool Grow(size_t bytes);

  std::filesystem::path path_;
  char* start_ = nullptr;  // of kMostBytes addresses; null where the system has none to give
  std::mutex taking_;
  int fd_ = -1;
  size_t grown_ = 0;  // bytes of the file
  std::atomic<size_t> taken_ = 0;
  std::atomic<int> failure_ = 0;
};

}  // namespace vela::indexer
