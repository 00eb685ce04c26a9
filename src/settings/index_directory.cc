#include "settings/index_directory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "format/index_directory.h"

namespace vela {

IndexDirectory::~IndexDirectory() { CloseIndexDirectory(*this); }

void OpenIndexDirectory(IndexDirectory& directory, std::string_view path) {
  CloseIndexDirectory(directory);
  Set(directory.path, path);
  // The trailing slash makes an empty path the root, as joining the file names to it would.
  FixedText<513> opened;
  Set(opened, View(directory.path));
  Append(opened, "/");
  constexpr int kFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
  directory.descriptor = open(opened.bytes, kFlags);
  if (directory.descriptor < 0) return;
  const int current = openat(directory.descriptor, kCurrentGeneration, kFlags);
  if (current < 0) return;
  close(directory.descriptor);
  directory.descriptor = current;
}

void CloseIndexDirectory(IndexDirectory& directory) {
  if (directory.descriptor >= 0) close(directory.descriptor);
  directory.descriptor = -1;
}

ssize_t ReadFileAt(int descriptor, uint64_t offset, size_t size, char* to) {
  size_t filled = 0;
  while (filled < size) {
    const ssize_t got =
        pread(descriptor, to + filled, size - filled, static_cast<off_t>(offset + filled));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    filled += static_cast<size_t>(got);
  }
  return static_cast<ssize_t>(filled);
}

namespace {

// Reads up to `size` bytes from the descriptor's start; false when memory or the reading fails.
bool ReadWhole(int descriptor, size_t size, OwnedArray<char>& copy, size_t& filled) {
  if (!copy.TryAllocate(size)) return false;
  const ssize_t got = ReadFileAt(descriptor, 0, size, copy.data());
  filled = static_cast<size_t>(std::max<ssize_t>(got, 0));
  return got >= 0;
}

}  // namespace

bool FileImage::Take(int descriptor, size_t size, bool wholeSoon) {
  // To map little and to let go of it costs more than to copy it.
  constexpr size_t kLittle = size_t{32} << 10;
  size_t filled = 0;
  if (!wholeSoon || size > kLittle || !ReadWhole(descriptor, size, copy_, filled)) {
    const int flags = MAP_PRIVATE | (wholeSoon ? MAP_POPULATE : 0);
    void* start = mmap(nullptr, size, PROT_READ, flags, descriptor, 0);
    if (start != MAP_FAILED) {
      descriptor_ = descriptor;
      bytes_ = {static_cast<const char*>(start), size};
      return true;
    }
    if (!ReadWhole(descriptor, size, copy_, filled)) return false;
  }
  bytes_ = {copy_.data(), filled};
  return true;
}

int OpenRegularFile(const IndexDirectory& directory, const char* name, size_t& size) {
  if (directory.descriptor < 0) return -1;
  // Without O_NONBLOCK a pipe in a file's place would keep the request waiting.
  const int descriptor =
      openat(directory.descriptor, name, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0) return -1;
  struct stat info;
  if (fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) {
    close(descriptor);
    return -1;
  }
  size = static_cast<size_t>(info.st_size);
  return descriptor;
}

bool FileImage::Open(const IndexDirectory& directory, const char* name, bool wholeSoon) {
  Close();
  size_t size = 0;
  const int descriptor = OpenRegularFile(directory, name, size);
  if (descriptor < 0) return false;
  open_ = true;
  if (size > 0) open_ = Take(descriptor, size, wholeSoon);
  if (descriptor_ < 0) close(descriptor);
  return open_;
}

void FileImage::Close() {
  if (descriptor_ >= 0) {
    munmap(const_cast<char*>(bytes_.data()), bytes_.size());
    close(descriptor_);
  }
  copy_.Release();
  bytes_ = {};
  descriptor_ = -1;
  open_ = false;
}

bool FileImage::CopyTo(char* to, size_t offset, size_t size) const {
  if (descriptor_ < 0) {
    bytes_.copy(to, size, offset);
    return true;
  }
  return ReadFileAt(descriptor_, offset, size, to) == static_cast<ssize_t>(size);
}

bool ReadLine(LineReader& reader, size_t limit, std::string_view& line) {
  if (reader.rest.empty()) return false;
  line = reader.rest.substr(0, limit);
  const size_t end = line.find('\n');
  if (end != line.npos) line = line.substr(0, end + 1);
  reader.rest.remove_prefix(line.size());
  return true;
}

std::string_view UpToNul(std::string_view line) { return line.substr(0, line.find('\0')); }

}  // namespace vela
