// out_file.h: writing one file of the index, little-endian numbers included.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
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

  void Write(std::string_view bytes) {
    if (bytes.size() > kBufferBytes - used_) return WriteMore(bytes);
    bytes.copy(buffer_.get() + used_, bytes.size());  // none of an empty one, wherever it is
    used_ += bytes.size();
  }
  // The low `bytes` bytes (1 to 8) of `value`, lowest first.
  void WriteNumber(uint64_t value, size_t bytes) {
    static_assert(std::endian::native == std::endian::little);
    if (bytes > kBufferBytes - used_) Flush();
    memcpy(buffer_.get() + used_, &value, sizeof value);  // those of the next one go over the rest
    used_ += bytes;
  }
  uint64_t size() const { return written_ + used_; }
  // Bytes written before, from `at` on: at most `bytes` of them, fewer at the end of the file.
  std::string Read(uint64_t at, size_t bytes);
  // Puts `bytes` in the place of as many that were written before, from `at` on.
  void Replace(uint64_t at, std::string_view bytes);
  // Brings everything to the disk and closes the file. Returns its size in bytes.
  uint64_t Finish();
  // Closes a temporary file, which need not outlive the process.
  void Close();

 private:
  static constexpr size_t kBufferBytes = size_t{128} << 10;

  void WriteMore(std::string_view bytes);
  void WriteOut(std::string_view bytes);
  void Flush();

  std::filesystem::path path_;
  std::unique_ptr<char[]> buffer_;  // with room for a number more
  size_t used_ = 0;                 // bytes of it
  uint64_t written_ = 0;            // bytes that left the buffer
  int fd_ = -1;
};

}  // namespace vela::indexer
