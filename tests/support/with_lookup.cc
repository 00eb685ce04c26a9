#include "support/with_lookup.h"

#include <fstream>
#include <memory>
#include <string>

#include "format/settings_file.h"
#include "indexer/write/lookup_writer.h"
#include "settings/settings_file.h"
#include "support/recipe.h"

namespace vela::support {

bool AddLookup(const std::filesystem::path& directory) {
  const std::filesystem::path settings = directory / kSettingsFileName;
  if (!std::filesystem::is_regular_file(settings)) return false;
  const std::string former = ReadWholeFile(settings);
  const auto read = std::make_unique<Settings>();
  if (ReadSettings(*read, former) != SettingsStatus::kOk || read->DictIDLen < 1) return false;
  const indexer::LookupSizes sizes = indexer::WriteLookup(
      directory,
      {.tokenBytes = static_cast<size_t>(read->DictIDLen), .lastSign = read->DictReservedLimit},
      UINT32_MAX);
  if (sizes.generation == 0) return false;
  // Ahead of all other lines, since the last one may lack its line feed.
  std::ofstream(settings, std::ios::binary | std::ios::trunc)
      << "LookupGeneration = " << sizes.generation << "\n"
      << former;
  return true;
}

}  // namespace vela::support
