// options.h: what a run of the inspector is asked for on the command line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vela::inspector {

struct Options {
  std::string directory;
  bool json = false;
  size_t most = 10;  // findings of a kind, and results of a query, that are listed
  // At most one of them, and then nothing is checked.
  std::string word;
  std::string text;     // of this page: an address or a number
  std::string explain;  // a query
  // Of what is shown or explained.
  std::string page;  // an address or a number
  bool allTerms = false;
  std::vector<int32_t> categories;  // numbers, from 0
  std::string from;                 // dates as a visitor types them
  std::string to;
  std::optional<int32_t> sort;
};

struct ParsedOptions {
  Options options;
  std::optional<int> exitStatus;  // the program ends with it
};

// Reads the command line; writes help and what is wrong with it.
ParsedOptions ParseOptions(int argc, const char* const* argv);

}  // namespace vela::inspector
