// state_folder.h: the folder for what is kept from run to run.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "indexer/publish/run_lock.h"

namespace vela::indexer {

inline constexpr char kStateLockName[] = "vela_state.lock";

struct StateFolder {
  std::filesystem::path path;     // absolute, links resolved
  std::unique_ptr<RunLock> lock;  // held as long as the folder is used
};

// The hidden one beside `indexFolder`, which is absolute.
std::filesystem::path DefaultStateFolder(const std::filesystem::path& indexFolder);

// Makes the folder when it is missing, for its owner alone, and locks it. `wanted` is that of the
// options; empty: a hidden one beside `indexFolder`, which is absolute, or empty where none is
// written. Throws IndexError: kUsage
// where it lies in the index folder, kBusy while another run uses it.
StateFolder OpenStateFolder(const std::string& wanted, const std::filesystem::path& indexFolder);

}  // namespace vela::indexer
