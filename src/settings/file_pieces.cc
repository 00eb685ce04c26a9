#include "settings/file_pieces.h"

#include <unistd.h>

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
  return ReadFileAt(descriptor_, offset, size, static_cast<char*>(to)) ==
         static_cast<ssize_t>(size);
}

std::string_view FileStretches::Read(uint64_t begin, uint64_t end) {
  if (begin >= end || end - begin > kLimit) return {};
  if (!isOpened_) {
    isOpened_ = true;
    if (!bytes_.TryAllocate(kLimit) || !file_.Open(directory_, name_)) file_.Close();
  }
  const auto size = static_cast<size_t>(end - begin);
  if (!file_.Read(begin, size, bytes_.data())) return {};
  return {bytes_.data(), size};
}

}  // namespace vela
