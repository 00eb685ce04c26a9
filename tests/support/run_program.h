// run_program.h: one request answered by the real program, as a web server would start it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace vela::support {

struct Request {
  // The whole environment of the process, but for the settings of the sanitizers.
  std::map<std::string, std::string> environment;
  std::string programPath;             // what the program is told to be called by
  std::vector<std::string> arguments;  // without the program's path
  std::filesystem::path workingDirectory;
  std::string body;  // standard input
};

struct Outcome {
  std::string output;             // every byte of standard output
  std::string errorOutput;        // every byte of standard error
  int exitStatus = -1;            // -1 when the process did not exit by itself
  int signal = 0;                 // the signal that ended it, 0 for none
  bool timedOut = false;          // it was ended because the time limit had passed
  int64_t residentKilobytes = 0;  // the most memory it held at once
};

// A short description of how the process ended, for test messages.
std::string DescribeEnd(const Outcome& outcome);

// Real time one request may take, generous because the machine may be busy.
inline constexpr int kTimeLimitMilliseconds = 20000;

// Runs `executable` and waits for its end. Throws std::runtime_error when it cannot be started.
Outcome RunProgram(const std::filesystem::path& executable, const Request& request,
                   int milliseconds = kTimeLimitMilliseconds);

// Whether this build carries the address sanitizer, whose memory says nothing about the program's.
bool IsSanitized();

// A GET request for `queryString` to the index directory `directory`.
Request GetRequest(const std::filesystem::path& directory, const std::string& queryString);

}  // namespace vela::support
