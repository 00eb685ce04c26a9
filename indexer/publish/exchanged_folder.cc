#include "indexer/publish/exchanged_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <utility>

#include "format/index_directory.h"
#include "indexer/publish/carry_over.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr char kLock[] = "lock";
constexpr char kNew[] = "new-";
constexpr char kOld[] = "old-";
// What earlier versions, which renamed twice where folders cannot be exchanged, added to the name
// of their new folder for the old one.
constexpr std::string_view kAside = ".old";

bool IsDenied(int error) { return error == EACCES || error == EPERM || error == EROFS; }

// Whether something in the folder, such as the log folder of the web server's user, is a folder of
// another user: a copy would belong to `user`, and moving it takes the right to write in it.
bool HoldsFoldersOfOthers(const fs::path& folder, uid_t user) {
  constexpr uid_t kRoot = 0;  // gives copies away
  if (user == kRoot) return false;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    struct stat info = {};
    if (lstat(entry.path().c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid != user) {
      return true;
    }
  }
  return false;
}

bool CanWriteIn(const fs::path& folder) {
  return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

}  // namespace

ExchangedFolder::ExchangedFolder(const fs::path& target, const PublishSystem& system)
    : IndexPlace(target, system) {}

std::unique_ptr<IndexPlace> ExchangedFolder::Open(const fs::path& target,
                                                  const PublishSystem& system) {
  std::unique_ptr<ExchangedFolder> place(new ExchangedFolder(target, system));
  if (!place->Begin()) return nullptr;
  return place;
}

fs::path ExchangedFolder::Hidden(const char* what) const {
  return target_.parent_path() / ("." + target_.filename().string() + "." + what);
}

bool ExchangedFolder::Begin() {
  int error = TakeLock(Hidden(kLock));
  if (error == 0) {
    Sweep();
    error = MakeFreshFolder(Hidden(kNew), fresh_);
  }
  if (error == 0) return CanExchange();
  const bool denied = IsDenied(error);
  if (denied && fs::is_directory(target_) && CanWriteIn(target_)) return false;
  std::string why = strerror(error);
  if (denied) {
    why += ". The new index is made beside " + target_.string() +
           " and then takes its place: let the user who runs vela_index write there";
  }
  FailPublishing("Cannot make a folder in " + target_.parent_path().string(), why);
}

bool ExchangedFolder::CanExchange() const {
  if (!fs::exists(target_)) return true;  // a plain rename will do
  if (HoldsFoldersOfOthers(target_, system_.user()) && CanWriteIn(target_)) return false;
  const fs::path one = fresh_ / "one";
  const fs::path other = fresh_ / "other";
  fs::create_directory(one);
  fs::create_directory(other);
  // A folder is never renamed onto one that is not empty. What the system says instead tells about
  // this very folder: EBUSY of the root of a mounted file system, EXDEV of one that lies in a lower
  // layer of an overlay.
  const int renamed = rename(target_.c_str(), fresh_.c_str()) == 0 ? 0 : errno;
  if (renamed == 0) {
    fs::rename(fresh_, target_);
    FailPublishing("Cannot use " + target_.string() + " for --out",
                   "its file system replaces folders that are not empty");
  }
  const bool can = (renamed == ENOTEMPTY || renamed == EEXIST) && system_.exchange(one, other) == 0;
  fs::remove(one);
  fs::remove(other);
  return can;
}

fs::path ExchangedFolder::LastIndex() const {
  const std::string former = Hidden(kOld).filename().string();
  fs::path last;
  std::pair<std::time_t, long> gaveWay;
  std::error_code unreadable;
  for (const fs::directory_entry& entry :
       fs::directory_iterator(target_.parent_path(), unreadable)) {
    struct stat info = {};
    if (!IsFreshName(entry.path().filename().string(), former) ||
        lstat(entry.path().c_str(), &info) != 0 || !S_ISDIR(info.st_mode) || !WasInPlace(info)) {
      continue;
    }
    const std::pair<std::time_t, long> changed = {info.st_ctim.tv_sec, info.st_ctim.tv_nsec};
    if (!last.empty() && changed <= gaveWay) continue;
    last = entry.path();
    gaveWay = changed;
  }
  return last;
}

void ExchangedFolder::Sweep() const {
  const fs::path last = system_.keepsLast ? LastIndex() : fs::path();
  const std::string fresh = Hidden(kNew).filename().string();
  const std::string former = Hidden(kOld).filename().string();
  std::vector<fs::path> gone;
  std::error_code unreadable;
  for (const fs::directory_entry& entry :
       fs::directory_iterator(target_.parent_path(), unreadable)) {
    if (entry.symlink_status().type() != fs::file_type::directory) continue;
    const std::string name = entry.path().filename().string();
    const bool isAside =
        name.ends_with(kAside) && IsFreshName(name.substr(0, name.size() - kAside.size()), fresh);
    if (isAside && !fs::exists(fs::symlink_status(target_))) {
      // Killed between the two renames, it left no index but this one.
      fs::rename(entry.path(), target_);
    } else if (isAside || IsFreshName(name, fresh) ||
               (IsFreshName(name, former) && entry.path() != last && IsLongFormer(entry.path()))) {
      gone.push_back(entry.path());
    }
  }
  for (const fs::path& folder : gone) RemoveFolder(folder);
}

void ExchangedFolder::CarryOver() const {
  for (const fs::directory_entry& entry : fs::directory_iterator(target_)) {
    const std::string name = entry.path().filename().string();
    if (IsIndexFile(name) || name == kGenerations ||
        fs::exists(fs::symlink_status(fresh_ / name))) {
      continue;
    }
    LinkOrCopy(entry.path(), fresh_ / name);
  }
}

void ExchangedFolder::Commit(const std::vector<fs::path>& needed) {
  const bool replaces = fs::exists(target_);
  if (replaces) {
    CarryOver();
    TakeOwnerAndMode(target_, fresh_);
  } else {
    const mode_t mask = umask(0);
    umask(mask);
    if (chmod(fresh_.c_str(), 0777 & ~mask) != 0) {
      FailPublishing("Cannot prepare " + fresh_.string(), strerror(errno));
    }
  }
  for (const fs::path& folder : needed) fs::create_directories(fresh_ / folder);
  if (!replaces) {
    fs::rename(fresh_, target_);
    fresh_.clear();
    return;
  }
  // Under the name of a former index already before it is one, so that at no moment a search may
  // be reading what the next run would take for the rest of a killed one.
  std::string name = fresh_.filename().string();
  name = Hidden(kOld).string() + name.substr(name.rfind('-') + 1);
  MarkNotYetInPlace(fresh_);
  fs::rename(fresh_, name);
  fresh_ = name;
  const int error = system_.exchange(fresh_, target_);
  if (error != 0) FailPublishing("Cannot put the index into " + target_.string(), strerror(error));
  MarkChanged(fresh_);
  MarkChanged(target_);
  fresh_.clear();
  if (system_.keepsLast) Sweep();  // what was the last index until now
}

}  // namespace vela::indexer
