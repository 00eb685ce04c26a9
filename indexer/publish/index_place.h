// index_place.h: how a new index takes the place of an old one, whatever the file system can do.
//
// A search opens the files of its index one after the other, through one handle of the folder that
// it takes at its start. So a new index is made whole in a folder of its own, is put into place in
// one step, and the former one stays, all of it, as long as a search may go on reading it
// (former_settings.h); the first run after that time removes it. Where it is to be had back
// (rollback.h), it stays until the next index takes its place.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "indexer/publish/run_lock.h"

namespace vela::indexer {

// What is asked of the system and of the caller; tests put their own in its place.
struct PublishSystem {
  // Exchanges two folders in one step: 0, or the error number; nothing has changed then.
  std::function<int(const std::filesystem::path&, const std::filesystem::path&)> exchange;
  // The present time, in seconds since 1970.
  std::function<std::time_t()> now;
  // Who runs the program.
  std::function<uid_t()> user;
  // Called again and again while another run holds the index; waits a moment, or throws to give up.
  // Without it a run ends at once with ExitStatus::kBusy.
  std::function<void()> whenBusy;
  // The index before the present one stays, for RollBack.
  bool keepsLast = false;

  PublishSystem();
};

// One of them exists for a run; it holds the lock of the index. Failures throw IndexError or
// std::filesystem::filesystem_error.
class IndexPlace {
 public:
  // Removes the new folder when it was not put into place.
  virtual ~IndexPlace();
  IndexPlace(const IndexPlace&) = delete;
  IndexPlace& operator=(const IndexPlace&) = delete;

  // The new folder, where the index is written to.
  const std::filesystem::path& fresh() const { return fresh_; }
  // Brings what the old index has besides its own files along, makes the folders of `needed`, which
  // are relative, and puts the new folder into place.
  virtual void Commit(const std::vector<std::filesystem::path>& needed) = 0;
  // The folder of the index that was in place before the present one; empty when it is gone. When
  // that folder was changed last it gave way.
  virtual std::filesystem::path LastIndex() const = 0;

 protected:
  IndexPlace(std::filesystem::path target, const PublishSystem& system)
      : target_(std::move(target)), system_(system) {}

  // Takes the lock, as often as system_.whenBusy asks for it. 0, or the error number.
  int TakeLock(const std::filesystem::path& file);
  // Whether the folder was renamed, or otherwise marked as former, long enough ago for the searches
  // in the index that lies in `index`.
  bool IsLongFormer(const std::filesystem::path& folder, const std::filesystem::path& index) const;
  bool IsLongFormer(const std::filesystem::path& folder) const {
    return IsLongFormer(folder, folder);
  }

  std::filesystem::path target_;
  std::filesystem::path fresh_;  // empty once it is in place
  PublishSystem system_;
  RunLock lock_;
};

// A new index has a time of 1970 from when it gets the name of an index to when it is in place: one
// that a killed run leaves is told from a former index by it.
void MarkNotYetInPlace(const std::filesystem::path& folder);
bool WasInPlace(const struct stat& folder);
// Gives the folder the present time; not every file system counts an exchange as a change of it.
void MarkChanged(const std::filesystem::path& folder);

// Makes a new, empty folder, PREFIX with six characters added, and sets `made` to its path. 0, or
// the error number.
int MakeFreshFolder(const std::filesystem::path& prefix, std::filesystem::path& made);

// Whether `name` is PREFIX with what MakeFreshFolder adds.
bool IsFreshName(std::string_view name, std::string_view prefix);

}  // namespace vela::indexer
