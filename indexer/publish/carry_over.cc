#include "indexer/publish/carry_over.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "format/index_directory.h"
#include "indexer/publish/open_search.h"
#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

void CarryFolder(const fs::path& from, const fs::path& to) {
  fs::create_directory(to);
  for (const fs::directory_entry& entry : fs::directory_iterator(from)) {
    LinkOrCopy(entry.path(), to / entry.path().filename());
  }
  TakeOwnerAndMode(from, to);  // at the end, since it may take away the right to write
}

}  // namespace

void FailPublishing(const std::string& what, const std::string& why) {
  throw IndexError(ExitStatus::kFailed, what + ": " + why + ".");
}

bool IsIndexFile(const std::string& name) {
  return IsIndexFileName(name) || name == kOpenSearchName;
}

void TakeOwnerAndMode(const fs::path& from, const fs::path& to) {
  struct stat info = {};
  if (stat(from.c_str(), &info) != 0)
    FailPublishing("Cannot read " + from.string(), strerror(errno));
  if (geteuid() == 0 && chown(to.c_str(), info.st_uid, info.st_gid) != 0) {
    FailPublishing("Cannot give " + to.string() + " its owner", strerror(errno));
  }
  if (chmod(to.c_str(), info.st_mode & 07777) != 0) {
    FailPublishing("Cannot prepare " + to.string(), strerror(errno));
  }
}

// Carried-over folders may be read-only, and then only an owner who changes that can remove them.
void RemoveFolder(const fs::path& folder) {
  std::error_code ignored;
  fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, ignored);
  std::error_code error;
  for (fs::recursive_directory_iterator at(folder, error), end; !error && at != end;
       at.increment(error)) {
    if (at->symlink_status(ignored).type() != fs::file_type::directory) continue;
    fs::permissions(at->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
  }
  fs::remove_all(folder, ignored);
}

void LinkOrCopy(const fs::path& from, const fs::path& to) {
  switch (fs::symlink_status(from).type()) {
    case fs::file_type::symlink:
      fs::copy_symlink(from, to);
      break;
    case fs::file_type::directory:
      CarryFolder(from, to);
      break;
    case fs::file_type::regular: {
      // A link keeps the file itself: a log that is being written goes on in the new folder.
      std::error_code error;
      fs::create_hard_link(from, to, error);
      if (error) fs::copy_file(from, to);
      break;
    }
    default:
      break;  // pipes and sockets have no place in an index folder
  }
}

}  // namespace vela::indexer
