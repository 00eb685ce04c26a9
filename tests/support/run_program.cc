#include "support/run_program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace vela::support {
namespace {

using Clock = std::chrono::steady_clock;

// Both ends of a pipe, closed with their owner.
struct Pipe {
  int readEnd = -1;
  int writeEnd = -1;

  Pipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
    readEnd = ends[0];
    writeEnd = ends[1];
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    CloseRead();
    CloseWrite();
  }
  void CloseRead() { CloseOne(readEnd); }
  void CloseWrite() { CloseOne(writeEnd); }

 private:
  static void CloseOne(int& descriptor) {
    if (descriptor >= 0) close(descriptor);
    descriptor = -1;
  }
};

// The strings behind an argument or environment vector, which the pointers must not outlive.
struct StringVector {
  std::vector<std::string> texts;
  std::vector<char*> Pointers() {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
  }
};

StringVector Arguments(const Request& request) {
  StringVector v;
  v.texts.push_back(request.programPath);
  v.texts.insert(v.texts.end(), request.arguments.begin(), request.arguments.end());
  return v;
}

StringVector Environment(const Request& request) {
  StringVector v;
  for (const auto& [name, value] : request.environment) v.texts.push_back(name + "=" + value);
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "LLVM_PROFILE_FILE"}) {
    if (const char* value = getenv(name)) v.texts.push_back(std::string(name) + "=" + value);
  }
  return v;
}

// The child's side of the fork: only async-signal-safe calls.
[[noreturn]] void BecomeProgram(const char* executable, char* const* arguments,
                                char* const* environment, const char* directory, int input,
                                int output, int errors) {
  signal(SIGPIPE, SIG_DFL);
  if (dup2(input, 0) < 0 || dup2(output, 1) < 0 || dup2(errors, 2) < 0) _exit(127);
  if (*directory != '\0' && chdir(directory) != 0) _exit(127);
  const rlimit noCore = {0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  execve(executable, arguments, environment);
  _exit(127);
}

// Reads what is there into `text`; closes the read end at its end.
void Drain(Pipe& pipe, std::string& text) {
  char bytes[65536];
  const ssize_t got = read(pipe.readEnd, bytes, sizeof bytes);
  if (got > 0) {
    text.append(bytes, static_cast<size_t>(got));
  } else if (got == 0 || errno != EINTR) {
    pipe.CloseRead();
  }
}

// Writes what fits of the body from `at` on; closes the write end when it is done or unwanted.
void Feed(Pipe& pipe, const std::string& body, size_t& at) {
  if (at < body.size()) {
    const ssize_t put = write(pipe.writeEnd, body.data() + at, body.size() - at);
    if (put >= 0) {
      at += static_cast<size_t>(put);
    } else if (errno != EINTR && errno != EAGAIN) {
      at = body.size();  // the program reads no further
    }
  }
  if (at >= body.size()) pipe.CloseWrite();
}

}  // namespace

Outcome RunProgram(const std::filesystem::path& executable, const Request& request,
                   int milliseconds) {
  if (access(executable.c_str(), X_OK) != 0) {
    throw std::runtime_error("cannot run " + executable.string());
  }
  // A program that does not read its input must not end the test.
  static const auto ignored = signal(SIGPIPE, SIG_IGN);
  (void)ignored;

  const std::string path = std::filesystem::absolute(executable).string();
  const std::string directory = request.workingDirectory.string();
  StringVector arguments = Arguments(request);
  StringVector environment = Environment(request);
  const std::vector<char*> argumentPointers = arguments.Pointers();
  const std::vector<char*> environmentPointers = environment.Pointers();
  Pipe input;
  Pipe output;
  Pipe errors;

  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("cannot start a process");
  if (child == 0) {
    BecomeProgram(path.c_str(), argumentPointers.data(), environmentPointers.data(),
                  directory.c_str(), input.readEnd, output.writeEnd, errors.writeEnd);
  }
  input.CloseRead();
  output.CloseWrite();
  errors.CloseWrite();
  fcntl(input.writeEnd, F_SETFL, O_NONBLOCK);

  Outcome outcome;
  const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
  size_t fed = 0;
  Feed(input, request.body, fed);
  while (output.readEnd >= 0 || errors.readEnd >= 0) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) {
      outcome.timedOut = true;
      kill(child, SIGKILL);
      break;
    }
    pollfd polled[3] = {
        {output.readEnd, POLLIN, 0}, {errors.readEnd, POLLIN, 0}, {input.writeEnd, POLLOUT, 0}};
    if (poll(polled, 3, static_cast<int>(std::min<int64_t>(left, 1000))) < 0) continue;
    if (polled[0].revents != 0) Drain(output, outcome.output);
    if (polled[1].revents != 0) Drain(errors, outcome.errorOutput);
    if (polled[2].revents != 0) Feed(input, request.body, fed);
  }
  int status = 0;
  rusage usage = {};
  while (wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
  }
  outcome.residentKilobytes = usage.ru_maxrss;
  if (WIFEXITED(status)) outcome.exitStatus = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
  return outcome;
}

bool IsSanitized() {
#if defined(__SANITIZE_ADDRESS__)
  return true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
  return true;
#else
  return false;
#endif
#else
  return false;
#endif
}

std::string DescribeEnd(const Outcome& outcome) {
  std::string text = outcome.timedOut      ? "ended by the time limit"
                     : outcome.signal != 0 ? "ended by signal " + std::to_string(outcome.signal)
                                           : "exit status " + std::to_string(outcome.exitStatus);
  if (!outcome.errorOutput.empty()) text += ", standard error:\n" + outcome.errorOutput;
  return text;
}

Request GetRequest(const std::filesystem::path& directory, const std::string& queryString) {
  Request request;
  request.environment = {{"REQUEST_METHOD", "GET"},
                         {"QUERY_STRING", queryString},
                         {"SCRIPT_NAME", "/search.cgi"},
                         {"TZ", "UTC"}};
  request.programPath = (directory / "search.cgi").string();
  return request;
}

}  // namespace vela::support
