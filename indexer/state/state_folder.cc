#include "indexer/state/state_folder.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace fs = std::filesystem;

fs::path DefaultStateFolder(const fs::path& indexFolder) {
  return indexFolder.parent_path() / ("." + indexFolder.filename().string() + ".state");
}

StateFolder OpenStateFolder(const std::string& wanted, const fs::path& indexFolder) {
  StateFolder state = {.path = wanted, .lock = std::make_unique<RunLock>()};
  if (wanted.empty()) state.path = DefaultStateFolder(indexFolder);
  const auto fail = [&state](const std::string& why) {
    throw IndexError(ExitStatus::kFailed, "Cannot use the folder " + state.path.string() +
                                              " for what is kept from run to run: " + why +
                                              ". Give another one: --state DIR.");
  };
  if (mkdir(state.path.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    fail(std::generic_category().message(errno));
  }
  std::error_code error;
  state.path = fs::canonical(state.path, error);
  if (error || !fs::is_directory(state.path)) fail(error ? error.message() : "it is no folder");
  if (!indexFolder.empty() &&
      std::ranges::mismatch(indexFolder, state.path).in1 == indexFolder.end()) {
    throw IndexError(ExitStatus::kUsage,
                     "--state must not lie in the index folder, which is "
                     "replaced as a whole and open to visitors.");
  }
  if (state.lock->TryTake(state.path / kStateLockName) != LockStatus::kHeld) {
    throw IndexError(ExitStatus::kBusy, "Another run is using " + state.path.string() + ".");
  }
  return state;
}

}  // namespace vela::indexer
