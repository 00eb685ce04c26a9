// file_pieces.h: a file of which pieces are read here and there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "settings/index_directory.h"
#include "text/owned_array.h"

namespace vela {

// Copies pieces of a file, one call of the system each. That is for few and small ones: for the
// first byte of a mapped file the system maps what stands around it too, which together with
// letting go of it takes ten times as long. Owns the handle.
class FilePieces {
 public:
  FilePieces() = default;
  FilePieces(const FilePieces&) = delete;
  FilePieces& operator=(const FilePieces&) = delete;
  ~FilePieces() { Close(); }

  // Opens a regular file of the directory; false when that cannot be.
  [[nodiscard]] bool Open(const IndexDirectory& directory, const char* name);
  // The same over bytes in memory, which must outlive it.
  void Open(std::string_view bytes);
  void Close();

  // Bytes of the file when it was opened; 0 while closed.
  uint64_t size() const { return size_; }

  // Copies the `size` bytes from `offset` on to `to`. False where the file has not so many, or they
  // cannot be read.
  [[nodiscard]] bool Read(uint64_t offset, size_t size, void* to) const;

 private:
  int descriptor_ = -1;
  const char* bytes_ = nullptr;  // where it is in memory
  uint64_t size_ = 0;
};

// Hands out stretches of a file, one after the other.
class FileStretches {
 public:
  // `directory` and `name` must outlive it. The file is opened when the first stretch is read.
  FileStretches(const IndexDirectory& directory, const char* name)
      : directory_(directory), name_(name) {}

  static constexpr uint64_t kLimit = uint64_t{64} << 10;  // bytes of a stretch

  // The bytes from `begin` to `end`, valid until the next call. Empty where they cannot be had, or
  // are more than kLimit.
  std::string_view Read(uint64_t begin, uint64_t end);

 private:
  const IndexDirectory& directory_;
  const char* name_;
  bool isOpened_ = false;  // or has failed to
  FilePieces file_;
  OwnedArray<char> bytes_;
};

}  // namespace vela
