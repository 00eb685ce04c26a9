#include "indexer/passing_folder.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace fs = std::filesystem;

PassingFolder::~PassingFolder() {
  std::error_code error;  // what cannot be removed lies among other passing files
  if (!path_.empty()) fs::remove_all(path_, error);
}

PassingFolder PassingFolder::Make() {
  std::error_code error;
  const fs::path all = fs::temp_directory_path(error);
  std::string name = (all / "vela_index_XXXXXX").string();
  if (error || mkdtemp(name.data()) == nullptr) {
    throw IndexError(
        ExitStatus::kFailed,
        "Cannot make a temporary folder in " + all.string() + ": " +
            (error ? error : std::error_code(errno, std::generic_category())).message() +
            ". Set TMPDIR to one that can be written.");
  }
  PassingFolder made;
  made.path_ = name;
  return made;
}

}  // namespace vela::indexer
