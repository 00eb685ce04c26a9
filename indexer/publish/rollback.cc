#include "indexer/publish/rollback.h"

#include <sys/stat.h>

#include <memory>
#include <string>
#include <utility>

#include "format/index_directory.h"
#include "indexer/publish/carry_over.h"
#include "indexer/publish/former_settings.h"
#include "indexer/publish/generations.h"
#include "indexer/publish/index_folder.h"
#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

std::pair<std::time_t, long> ChangeOf(const struct stat& file) {
  return {file.st_ctim.tv_sec, file.st_ctim.tv_nsec};
}

// Whether a file of the last index comes back, though it is no file of an index: the one of that
// name in `target` was put into its place by the run that brought the present index, and not since.
bool WasReplacedByRun(const struct stat& last, const fs::path& target, const std::string& name,
                      std::pair<std::time_t, long> published) {
  const fs::path present = target / name;
  // Beside generations a file that is no link into them is the owner's.
  if (Generations::AreIn(target) && !fs::is_symlink(fs::symlink_status(present))) return false;
  struct stat info = {};
  if (stat(present.c_str(), &info) != 0) return false;  // the owner removed it
  const bool isSame = info.st_dev == last.st_dev && info.st_ino == last.st_ino;
  return !isSame && ChangeOf(info) <= published;
}

// Brings what the run of the index in `last` wrote to the new folder. What else the index in place
// has comes along when that gives way.
void BringBack(const fs::path& last, const IndexFolder& folder) {
  struct stat info = {};
  if (stat(last.c_str(), &info) != 0) return;
  const std::pair<std::time_t, long> published = ChangeOf(info);
  const bool isReplaced = fs::is_directory(folder.target());
  for (const fs::directory_entry& entry : fs::directory_iterator(last)) {
    const std::string name = entry.path().filename().string();
    if (!isReplaced || IsIndexFile(name)) {
      LinkOrCopy(entry.path(), folder.fresh() / name);
      continue;
    }
    if (lstat(entry.path().c_str(), &info) != 0 || !S_ISREG(info.st_mode)) continue;
    if (!WasReplacedByRun(info, folder.target(), name, published)) continue;
    // No link: the end of another would count as a change by the owner.
    fs::copy_file(entry.path(), folder.fresh() / name);
    TakeOwnerAndMode(entry.path(), folder.fresh() / name);
  }
}

}  // namespace

KnownIndex RollBack(const fs::path& target, PublishSystem system) {
  system.keepsLast = true;
  IndexFolder folder(target, system);
  const fs::path last = folder.LastIndex();
  const std::unique_ptr<Settings> settings = last.empty() ? nullptr : ReadFormerSettings(last);
  if (settings == nullptr) {
    throw IndexError(ExitStatus::kNothing,
                     "There is no index before the one in " + folder.target().string() +
                         ", and nothing was changed. One is kept from the second run on, unless "
                         "keep_last is off in the configuration.");
  }
  KnownIndex index = {.made = 0, .pages = settings->NumPages};
  struct stat info = {};
  if (stat((last / kSettingsFileName).c_str(), &info) == 0) index.made = info.st_mtim.tv_sec;
  try {
    BringBack(last, folder);
  } catch (const fs::filesystem_error& error) {
    FailPublishing("Cannot bring back " + last.string(), error.what());
  }
  folder.Commit();
  return index;
}

}  // namespace vela::indexer
