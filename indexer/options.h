// options.h: the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vela::indexer {

struct Options {
  std::string site;
  std::string baseUrl;
  std::string out;
  std::string templateFile;          // empty: the one the index has, or the default
  std::string language = "english";  // a name that comes with the program, or a .vlang file
  std::vector<std::string> exclude;
  uint64_t memoryMegabytes = 256;
  uint64_t maxFileMegabytes = 20;
  bool quiet = false;
};

// Reads the arguments. An exit status instead of options means that all is said: help and version
// on standard output (0), a message about a wrong argument on standard error (2).
struct ParsedOptions {
  Options options;
  std::optional<int> exitStatus;
};
ParsedOptions ParseOptions(int argc, const char* const* argv);

}  // namespace vela::indexer
