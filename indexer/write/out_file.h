// out_file.h: writing one file of the index, little-endian numbers included.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace vela::indexer {

// A file being written through a buffer. Every failure throws IndexError (failed) with the file's
// name; a file that is not finished is closed and left to whoever removes its folder.
class OutFile {
 public:
  explicit OutFile(const std::filesystem::path& path);
  ~OutFile();
  OutFile(const OutFile&) = delete;
  OutFile& operator=(const OutFile&) = delete;

  void Write(std::string_view bytes);
  // The low `bytes` bytes (1 to 8) of `value`, lowest first.
  void WriteNumber(uint64_t value, size_t bytes);
  uint64_t size() const { return written_ + buffer_.size(); }
  // Bytes written before, from `at` on: at most `bytes` of them, fewer at the end of the file.
  std::string Read(uint64_t at, size_t bytes);
  // Puts `bytes` in the place of as many that were written before, from `at` on.
  void Replace(uint64_t at, std::string_view bytes);
  // Brings everything to the disk and closes the file. Returns its size in bytes.
  uint64_t Finish();
  // Closes a temporary file, which need not outlive the process.
  void Close();

 private:
  void Flush();

  std::filesystem::path path_;
  std::string buffer_;
  uint64_t written_ = 0;  // bytes that left the buffer
  int fd_ = -1;
};

}  // namespace vela::indexer
