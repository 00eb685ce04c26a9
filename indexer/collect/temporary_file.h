// temporary_file.h: what is collected and does not stay in memory: a file without a name, gone with
// the process however it ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace vela::indexer {

// Written at its end alone, through a buffer, and read anywhere. Every failure throws IndexError
// (failed) with the file's name.
class TemporaryFile {
 public:
  // Of that name for a moment, when the first bytes go to the disk.
  explicit TemporaryFile(std::filesystem::path path) : path_(std::move(path)) {}
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void Append(std::string_view bytes);
  uint64_t size() const { return written_ + buffer_.size(); }
  // Fills `bytes` with what stands from `at` on, all of which has been appended.
  void Read(uint64_t at, std::span<char> bytes);
  // Lets go of what was written.
  void Clear();

 private:
  void Write(std::string_view bytes);
  void Flush();

  std::filesystem::path path_;
  std::string buffer_;
  uint64_t written_ = 0;  // bytes that left the buffer
  int fd_ = -1;
};

}  // namespace vela::indexer
