// golden_test.cc: every folder <room>/<case> beside this file is one request with every byte of its
// response.
//
// A folder holds `request`, `index` (a recipe, see support/recipe.h), `expected`, when the exit
// status is not 0 `status`, and when the search is logged `expected_log`. Each is asked twice, with
// and without the lookup file, which makes no difference.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "support/index_builder.h"
#include "support/moving_text.h"
#include "support/recipe.h"
#include "support/run_program.h"
#include "support/scratch_directory.h"
#include "support/text_diff.h"
#include "support/with_lookup.h"

namespace vela::support {
namespace {

const std::filesystem::path kCases = VELA_GOLDEN_DIRECTORY;
const std::filesystem::path kProgram = VELA_SEARCH_PROGRAM;

// By the clock that the program reads: time() may lag behind it for some milliseconds.
time_t Now() { return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()); }

// "<room>/<case>" of each.
std::vector<std::string> CaseNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kCases)) {
    if (entry.path().filename() == "request" && entry.is_regular_file()) {
      names.push_back(entry.path().parent_path().lexically_relative(kCases).string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string TestName(const ::testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  std::replace(name.begin(), name.end(), '/', '_');
  return name;
}

// Every log below the directory, whole.
std::map<std::string, std::string> LogFiles(const std::filesystem::path& directory) {
  std::map<std::string, std::string> logs;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
    if (entry.is_regular_file() && entry.path().extension() == ".log") {
      logs[entry.path().string()] = ReadWholeFile(entry.path());
    }
  }
  return logs;
}

// The last line is the one that the request wrote.
std::string_view LastLine(std::string_view log) {
  const size_t feed = log.size() < 2 ? log.npos : log.rfind('\n', log.size() - 2);
  return feed == log.npos ? log : log.substr(feed + 1);
}

void ExpectSame(const std::string& expected, const std::string& actual) {
  const std::string shown = WithPlaceholders(actual, expected);
  EXPECT_TRUE(shown == expected) << "lines with - are missing, lines with + are not expected:\n"
                                 << DiffLines(expected, shown);
}

class Golden : public ::testing::TestWithParam<std::string> {};

enum class Lookup : uint8_t { kNone, kBeside };

void ExpectAnswer(const std::filesystem::path& folder, Lookup lookup) {
  const ScratchDirectory scratch;
  IndexBuilder index;
  ApplyRecipe(ReadWholeFile(folder / "index"), kCases / "indexes", index);
  index.WriteTo(scratch.path() / "index");
  if (lookup == Lookup::kBeside && !AddLookup(scratch.path() / "index")) return;

  Request request = ParseRequest(ReadWholeFile(folder / "request"));
  request.workingDirectory = scratch.path() / request.workingDirectory;
  const std::string zone = request.environment["TZ"];
  const std::map<std::string, std::string> logsBefore = LogFiles(scratch.path());
  const std::string begin = LocalTime(Now(), zone);
  const Outcome outcome = RunProgram(kProgram, request);
  const std::string end = LocalTime(Now(), zone);

  int expectedStatus = 0;
  if (std::filesystem::exists(folder / "status")) {
    expectedStatus = std::stoi(ReadWholeFile(folder / "status"));
  }
  EXPECT_EQ(outcome.exitStatus, expectedStatus) << DescribeEnd(outcome);
  EXPECT_EQ(outcome.errorOutput, "");
  ExpectSame(ReadWholeFile(folder / "expected"), outcome.output);

  const std::map<std::string, std::string> logs = LogFiles(scratch.path());
  if (!std::filesystem::exists(folder / "expected_log")) {
    EXPECT_EQ(logs, logsBefore) << "a search was logged";
    return;
  }
  ASSERT_EQ(logs.size(), 1U);
  const std::string& log = logs.begin()->second;
  ExpectSame(ReadWholeFile(folder / "expected_log"), log);
  const std::string logged = LoggedTime(LastLine(log));
  EXPECT_TRUE(begin <= logged && logged <= end) << logged << ", between " << begin << ", " << end;
}

TEST_P(Golden, Response) {
  ExpectAnswer(kCases / GetParam(), Lookup::kNone);
  SCOPED_TRACE("with the lookup file");
  ExpectAnswer(kCases / GetParam(), Lookup::kBeside);
}

INSTANTIATE_TEST_SUITE_P(Cases, Golden, ::testing::ValuesIn(CaseNames()), TestName);

}  // namespace
}  // namespace vela::support
