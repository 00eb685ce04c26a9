// in_file.h: reading a file of the index that is finished, a piece at a time. Unlike one that is
// mapped, it takes no more memory than its piece, whatever its size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace vela::indexer {

class InFile {
 public:
  // A file that cannot be opened is one without bytes.
  explicit InFile(const std::filesystem::path& path);
  ~InFile();
  InFile(const InFile&) = delete;
  InFile& operator=(const InFile&) = delete;

  bool isOpen() const { return fd_ >= 0; }
  // At most `bytes` bytes from `at` on, fewer at the end of the file, valid until the next call.
  // Throws IndexError (failed) when the disk does not give them.
  std::string_view Read(uint64_t at, size_t bytes);

 private:
  std::filesystem::path path_;
  int fd_ = -1;
  std::string piece_;
};

}  // namespace vela::indexer
