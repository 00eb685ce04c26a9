// whole_request.h: one request answered inside this process, over the index directory that the
// damage tests use.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "support/index_builder.h"

namespace vela::fuzz {

struct Answer {
  std::string output;
  int exitStatus = 0;
};

// The directory of every file kind, with nothing in its answers that differs between two runs.
support::IndexBuilder WholeIndex();

// A request of these environment variables and this body to `directory`.
Answer AnswerRequest(const std::filesystem::path& directory,
                     const std::map<std::string, std::string>& environment,
                     const std::string& body);

}  // namespace vela::fuzz
