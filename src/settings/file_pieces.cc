#include "settings/file_pieces.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vela {

bool FilePieces::Open(const IndexDirectory& directory, const char* name) {
  Close();
  size_t size = 0;
  descriptor_ = OpenRegularFile(directory, name, size);
  size_ = size;
  return descriptor_ >= 0;
}

void FilePieces::Open(std::string_view bytes) {
  Close();
  bytes_ = bytes.data();
  size_ = bytes.size();
}

void FilePieces::Close() {
  if (descriptor_ >= 0) close(descriptor_);
  descriptor_ = -1;
  bytes_ = nullptr;
  size_ = 0;
}

bool FilePieces::Read(uint64_t offset, size_t size, void* to) const {
  if (size > size_ || offset > size_ - size) return false;
  if (size == 0) return true;
  if (bytes_ != nullptr) {
    memcpy(to, bytes_ + offset, size);
    return true;
  }
  auto* place = static_cast<char*>(to);
  while (size != 0) {
    const ssize_t got = pread(descriptor_, place, size, static_cast<off_t>(offset));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    place += got;
    offset += static_cast<uint64_t>(got);
    size -= static_cast<size_t>(got);
  }
  return true;
}

}  // namespace vela
