#include "indexer/publish/run_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vela::indexer {

namespace {

int OpenLockFile(const std::filesystem::path& file) {
  const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
  if (descriptor >= 0 || errno != EACCES) return descriptor;
  // That of another user's run tells whether it is at work, too.
  const int readable = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
  if (readable < 0) errno = EACCES;
  return readable;
}

// Whether the path still leads to the open file.
bool IsFileAt(int descriptor, const std::filesystem::path& file) {
  struct stat opened = {};
  struct stat named = {};
  return fstat(descriptor, &opened) == 0 && stat(file.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

}  // namespace

LockStatus RunLock::TryTake(const std::filesystem::path& file) {
  Release();
  while (true) {
    const int descriptor = OpenLockFile(file);
    if (descriptor < 0) return LockStatus::kFailed;
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
      const int error = errno;
      close(descriptor);
      errno = error;
      return error == EWOULDBLOCK ? LockStatus::kBusy : LockStatus::kFailed;
    }
    // Between opening and locking, the process that held it may have removed the file: the lock
    // is then on a file that nobody else will find.
    if (IsFileAt(descriptor, file)) {
      file_ = file;
      descriptor_ = descriptor;
      return LockStatus::kHeld;
    }
    close(descriptor);
  }
}

void RunLock::Release() {
  if (descriptor_ < 0) return;
  // Before letting go: afterwards it could be another's.
  if (IsFileAt(descriptor_, file_)) unlink(file_.c_str());
  close(descriptor_);
  descriptor_ = -1;
}

}  // namespace vela::indexer
