#include "indexer/source/file_reading.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vela::indexer {

namespace {

struct OpenFile {
  int fd;
  explicit OpenFile(int opened) : fd(opened) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (fd >= 0) close(fd);
  }
};

}  // namespace

Reason ReadRegularFile(const std::string& path, uint64_t limit, FileContent& out) {
  out.bytes.clear();
  out.charset.clear();
  // Opened without following a link and without waiting for a writer, should the entry have become
  // a link or a pipe since the walk.
  const OpenFile file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (file.fd < 0) return errno == EACCES ? Reason::kNoPermission : Reason::kFileNotOpened;
  struct stat info = {};
  Reason reason = Reason::kNone;
  if (fstat(file.fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    reason = Reason::kNotRegular;
  } else if (static_cast<uint64_t>(info.st_size) > limit) {
    reason = Reason::kFileTooLarge;
  } else {
    out.size = static_cast<uint64_t>(info.st_size);
    out.modifiedTime = info.st_mtime;
    out.bytes.resize(static_cast<size_t>(info.st_size));
    size_t used = 0;
    while (used < out.bytes.size()) {
      const ssize_t got = read(file.fd, out.bytes.data() + used, out.bytes.size() - used);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) reason = Reason::kReadError;
      if (got <= 0) break;  // a file that shrank meanwhile ends here
      used += static_cast<size_t>(got);
    }
    out.bytes.resize(used);
  }
  return reason;
}

}  // namespace vela::indexer
