// with_extensions.h: gives an index directory of the tests the extensions and the files they read.
#pragma once

#include <filesystem>

namespace vela::support {

// Switches every extension on in the directory of tests/program/damage/everything, and adds the
// lookup file and the files of sections, completions, corrections and synonyms. The page info's
// records keep their bytes, of which Ranking takes the last two. False when one cannot be written.
[[nodiscard]] bool SwitchExtensionsOn(const std::filesystem::path& directory);

}  // namespace vela::support
