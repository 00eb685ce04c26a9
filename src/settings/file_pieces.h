// file_pieces.h: a file of which pieces are read here and there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "settings/index_directory.h"

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

}  // namespace vela
