// options.h: what a run of the inspector is asked for on the command line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace vela::inspector {

struct Options {
  std::string directory;
  bool json = false;
  size_t most = 10;  // findings of a kind that are shown
};

struct ParsedOptions {
  Options options;
  std::optional<int> exitStatus;  // the program ends with it
};

// Reads the command line; writes help and what is wrong with it.
ParsedOptions ParseOptions(int argc, const char* const* argv);

}  // namespace vela::inspector
