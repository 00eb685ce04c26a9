#include "indexer/publish/index_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "indexer/publish/carry_over.h"
#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace fs = std::filesystem;

IndexFolder::IndexFolder(const fs::path& target) {
  std::error_code error;
  target_ = fs::weakly_canonical(fs::absolute(target), error);
  if (error) FailPublishing("Cannot use " + target.string() + " for --out", error.message());
  if (!target_.has_filename()) target_ = target_.parent_path();
  const fs::path parent = target_.parent_path();
  if (fs::exists(target_) && !fs::is_directory(target_)) {
    FailPublishing("Cannot use " + target_.string() + " for --out", "it exists and is no folder");
  }
  if (!fs::is_directory(parent)) {
    FailPublishing("Cannot use " + target_.string() + " for --out",
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
    FailPublishing("Cannot make a folder in " + parent.string(), why);
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
        FailPublishing("Cannot prepare " + fresh_.string(), strerror(errno));
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
        FailPublishing("Cannot put the index into " + target_.string(), error.message());
      }
      fresh_ = aside;
    }
    // What is left under the temporary name is the old index; the destructor removes it.
  } catch (const fs::filesystem_error& error) {
    FailPublishing("Cannot put the index into " + target_.string(), error.what());
  }
}

}  // namespace vela::indexer
