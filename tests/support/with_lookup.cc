#include "support/with_lookup.h"

#include <fstream>
#include <string>

#include "format/settings_file.h"
#include "indexer/write/lookup_writer.h"
#include "support/recipe.h"

namespace vela::support {

bool AddLookup(const std::filesystem::path& directory) {
  const std::filesystem::path settings = directory / kSettingsFileName;
  if (!std::filesystem::is_regular_file(settings)) return false;
  const indexer::LookupSizes sizes = indexer::WriteLookup(directory);
  if (sizes.generation == 0) return false;
  const std::string former = ReadWholeFile(settings);
  // Ahead of all other lines, since the last one may lack its line feed.
  std::ofstream(settings, std::ios::binary | std::ios::trunc)
      << "LookupGeneration = " << sizes.generation << "\n"
      << former;
  return true;
}

}  // namespace vela::support
