// golden_test.cc: every folder beside this file is one request with every byte of its response.
//
// A folder holds `request`, `index` (a recipe, see support/recipe.h), `expected` and, when the exit
// status is not 0, `status`. The folder's name begins with the room that the case is about.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/index_builder.h"
#include "support/recipe.h"
#include "support/run_program.h"
#include "support/scratch_directory.h"
#include "support/text_diff.h"

namespace vela::support {
namespace {

const std::filesystem::path kCases = VELA_GOLDEN_DIRECTORY;
const std::filesystem::path kProgram = VELA_SEARCH_PROGRAM;

std::vector<std::string> CaseNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kCases)) {
    if (std::filesystem::exists(entry.path() / "request")) {
      names.push_back(entry.path().filename().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string TestName(const ::testing::TestParamInfo<std::string>& info) { return info.param; }

class Golden : public ::testing::TestWithParam<std::string> {};

TEST_P(Golden, Response) {
  const std::filesystem::path folder = kCases / GetParam();
  const ScratchDirectory scratch;
  IndexBuilder index;
  ApplyRecipe(ReadWholeFile(folder / "index"), kCases / "indexes", index);
  index.WriteTo(scratch.path() / "index");

  Request request = ParseRequest(ReadWholeFile(folder / "request"));
  request.workingDirectory = scratch.path() / request.workingDirectory;
  const Outcome outcome = RunProgram(kProgram, request);

  const std::string expected = ReadWholeFile(folder / "expected");
  int expectedStatus = 0;
  if (std::filesystem::exists(folder / "status")) {
    expectedStatus = std::stoi(ReadWholeFile(folder / "status"));
  }
  EXPECT_EQ(outcome.exitStatus, expectedStatus) << DescribeEnd(outcome);
  EXPECT_EQ(outcome.errorOutput, "");
  EXPECT_TRUE(outcome.output == expected)
      << "lines with - are missing, lines with + are not expected:\n"
      << DiffLines(expected, outcome.output);
}

INSTANTIATE_TEST_SUITE_P(Cases, Golden, ::testing::ValuesIn(CaseNames()), TestName);

}  // namespace
}  // namespace vela::support
