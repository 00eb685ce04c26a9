#include "indexer/publish/index_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "format/index_directory.h"
#include "indexer/publish/open_search.h"
#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(const std::string& what, const std::string& why) {
  throw IndexError(ExitStatus::kFailed, what + ": " + why + ".");
}

// Files that belong to an index and must not outlive it, whether this run wrote them or not.
bool IsIndexFile(const std::string& name) {
  return IsIndexFileName(name) || name == kOpenSearchName;
}

// Gives the folder `to` the owner and permissions of `from`: a log folder stays the web server's.
// Only root can give folders away; for others the folder is their own as all they make.
void TakeOwnerAndMode(const fs::path& from, const fs::path& to) {
  struct stat info = {};
  if (stat(from.c_str(), &info) != 0) Fail("Cannot read " + from.string(), strerror(errno));
  if (geteuid() == 0 && chown(to.c_str(), info.st_uid, info.st_gid) != 0) {
    Fail("Cannot give " + to.string() + " its owner", strerror(errno));
  }
  if (chmod(to.c_str(), info.st_mode & 07777) != 0) {
    Fail("Cannot prepare " + to.string(), strerror(errno));
  }
}

void LinkOrCopy(const fs::path& from, const fs::path& to);

void CarryFolder(const fs::path& from, const fs::path& to) {
  fs::create_directory(to);
  for (const fs::directory_entry& entry : fs::directory_iterator(from)) {
    LinkOrCopy(entry.path(), to / entry.path().filename());
  }
  TakeOwnerAndMode(from, to);  // at the end, since it may take away the right to write
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

}  // namespace

IndexFolder::IndexFolder(const fs::path& target) {
  std::error_code error;
  target_ = fs::weakly_canonical(fs::absolute(target), error);
  if (error) Fail("Cannot use " + target.string() + " for --out", error.message());
  if (!target_.has_filename()) target_ = target_.parent_path();
  const fs::path parent = target_.parent_path();
  if (fs::exists(target_) && !fs::is_directory(target_)) {
    Fail("Cannot use " + target_.string() + " for --out", "it exists and is no folder");
  }
  if (!fs::is_directory(parent)) {
    Fail("Cannot use " + target_.string() + " for --out",
         "the folder " + parent.string() + " does not exist. Make it first");
  }
  std::string name = (parent / ("." + target_.filename().string() + ".new-XXXXXX")).string();
  if (mkdtemp(name.data()) == nullptr) {
    const int number = errno;
    std::string why = strerror(number);
    if (number == EACCES || number == EPERM || number == EROFS) {
      why += ". The new index is made beside " + target_.string() +
             " and then takes its place: let the user who runs vela_index write there";
    }
    Fail("Cannot make a folder in " + parent.string(), why);
  }
  fresh_ = name;
}

IndexFolder::~IndexFolder() {
  if (!fresh_.empty()) RemoveFolder(fresh_);
}

bool IndexFolder::OldHas(const std::string& name) const {
  std::error_code ignored;
  return fs::exists(target_ / name, ignored);
}

void IndexFolder::CarryOver() {
  for (const fs::directory_entry& entry : fs::directory_iterator(target_)) {
    const std::string name = entry.path().filename().string();
    if (IsIndexFile(name) || fs::exists(fs::symlink_status(fresh_ / name))) continue;
    LinkOrCopy(entry.path(), fresh_ / name);
  }
}

void IndexFolder::Commit() {
  try {
    const bool replaces = fs::exists(target_);
    if (replaces) {
      CarryOver();
      TakeOwnerAndMode(target_, fresh_);
    } else {
      const mode_t mask = umask(0);
      umask(mask);
      if (chmod(fresh_.c_str(), 0777 & ~mask) != 0) {
        Fail("Cannot prepare " + fresh_.string(), strerror(errno));
      }
    }
    for (const fs::path& folder : needed_) fs::create_directories(fresh_ / folder);
    if (!replaces) {
      fs::rename(fresh_, target_);
      fresh_.clear();
    } else if (renameat2(AT_FDCWD, fresh_.c_str(), AT_FDCWD, target_.c_str(), RENAME_EXCHANGE) !=
               0) {
      // A file system that cannot exchange: the old folder steps aside for a moment.
      const fs::path aside = fresh_.string() + ".old";
      fs::rename(target_, aside);
      std::error_code error;
      fs::rename(fresh_, target_, error);
      if (error) {
        fs::rename(aside, target_);
        Fail("Cannot put the index into " + target_.string(), error.message());
      }
      fresh_ = aside;
    }
    // What is left under the temporary name is the old index; the destructor removes it.
  } catch (const fs::filesystem_error& error) {
    Fail("Cannot put the index into " + target_.string(), error.what());
  }
}

}  // namespace vela::indexer
