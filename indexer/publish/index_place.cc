#include "indexer/publish/index_place.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "indexer/publish/carry_over.h"
#include "indexer/publish/former_settings.h"
#include "indexer/report/index_error.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr std::time_t kNotYetInPlace = 0;
constexpr std::string_view kPattern = "XXXXXX";

int ExchangeFolders(const fs::path& one, const fs::path& other) {
  return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0 ? 0
                                                                                         : errno;
}

}  // namespace

PublishSystem::PublishSystem()
    : exchange(&ExchangeFolders), now([] { return std::time(nullptr); }), user(&geteuid) {}

IndexPlace::~IndexPlace() {
  if (!fresh_.empty()) RemoveFolder(fresh_);
}

int IndexPlace::TakeLock(const fs::path& file) {
  while (true) {
    switch (lock_.TryTake(file)) {
      case LockStatus::kHeld:
        return 0;
      case LockStatus::kFailed:
        return errno;
      case LockStatus::kBusy:
        break;
    }
    if (!system_.whenBusy) {
      throw IndexError(ExitStatus::kBusy, "Another run of vela_index is writing " +
                                              target_.string() +
                                              ". Wait until it has ended, or give --wait.");
    }
    system_.whenBusy();
  }
}

bool IndexPlace::IsLongFormer(const fs::path& folder, const fs::path& index) const {
  struct stat info = {};
  if (lstat(folder.c_str(), &info) != 0) return false;
  // The time of the last change to the folder itself, which nobody can set back.
  return info.st_ctim.tv_sec + SecondsToKeep(index) <= system_.now();
}

void MarkNotYetInPlace(const fs::path& folder) {
  const struct timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
                                    {.tv_sec = kNotYetInPlace, .tv_nsec = 0}};
  utimensat(AT_FDCWD, folder.c_str(), times, 0);
}

bool WasInPlace(const struct stat& folder) { return folder.st_mtim.tv_sec != kNotYetInPlace; }

void MarkChanged(const fs::path& folder) { utimensat(AT_FDCWD, folder.c_str(), nullptr, 0); }

int MakeFreshFolder(const fs::path& prefix, fs::path& made) {
  std::string name = prefix.string() + std::string(kPattern);
  if (mkdtemp(name.data()) == nullptr) return errno;
  made = name;
  return 0;
}

bool IsFreshName(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix)) return false;
  name.remove_prefix(prefix.size());
  return name.size() == kPattern.size() && std::ranges::all_of(name, IsAlphaNumeric);
}

}  // namespace vela::indexer
