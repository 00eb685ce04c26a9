// inspection.h: the inspector asked about an index of the tests.
#pragma once

#include <filesystem>
#include <string>

namespace vela::support {

// What is wrong with the files of the index, a line each; empty when nothing is. The page around
// the results is the owner's own.
std::string FaultsOf(const std::filesystem::path& directory);

}  // namespace vela::support
