#include "indexer/publish/former_settings.h"

#include <algorithm>
#include <system_error>

#include "format/index_directory.h"
#include "indexer/source/file_reading.h"
#include "settings/settings_file.h"

namespace vela::indexer {

namespace fs = std::filesystem;

std::unique_ptr<Settings> ReadFormerSettings(const fs::path& folder) {
  constexpr uint64_t kSettingsLimit = uint64_t{16} << 20;
  FileContent file;
  std::error_code error;  // without such a file the path is empty, and none is read
  const std::string path = fs::canonical(folder / kSettingsFileName, error).string();
  if (ReadRegularFile(path, kSettingsLimit, file) != Reason::kNone) return nullptr;
  auto settings = std::make_unique<Settings>();
  if (ReadSettings(*settings, file.bytes) != SettingsStatus::kOk) return nullptr;
  return settings;
}

std::time_t SecondsToKeep(const fs::path& folder) {
  constexpr std::time_t kLeast = 60;
  constexpr std::time_t kMost = std::time_t{24} * 3600;
  // A search looks at the clock between steps, and still has its answer to write.
  constexpr std::time_t kAfterSearch = 10;
  const std::unique_ptr<Settings> settings = ReadFormerSettings(folder);
  if (settings == nullptr) return kLeast;
  return std::clamp(settings->MaxSearchTime + kAfterSearch, kLeast, kMost);
}

}  // namespace vela::indexer
