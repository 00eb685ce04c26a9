// Times whole processes against each other, by turns in one run.
//
//   time_commands RUNS <COMMANDS >FIGURES
//
// One command a line, its parts divided by tabs:
//   NAME FOLDER [VARIABLE=VALUE]... -- PROGRAM [ARGUMENT]...
// The process starts in FOLDER, with these variables as its whole environment; its output is thrown
// away. After one round that is not counted, every round runs each command once, so that whatever
// else the machine does meets all of them. One line a command, divided by tabs:
//   NAME MEDIAN LOWER_QUARTILE CPU_MEDIAN (microseconds) PEAK_MEMORY (kB) MINOR_FAULTS EXIT_STATUS
// The CPU time is what the process had of a processor, and hardly depends on what else wants one.

#include <fcntl.h>
#include <spawn.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Command {
  std::string name;
  std::string folder;
  std::vector<std::string> variables;
  std::vector<std::string> arguments;
  std::vector<double> times;     // from start to end, microseconds
  std::vector<double> cpuTimes;  // microseconds
  long minorFaults = 0;          // of the last run
  int exitStatus = 0;            // of the last run; 128 and the signal when it was killed
};

[[noreturn]] void Fail(const std::string& what) {
  perror(what.c_str());
  exit(1);
}

bool ParseCommand(const std::string& line, Command& command) {
  std::istringstream parts(line);
  std::string part;
  if (!std::getline(parts, command.name, '\t') || !std::getline(parts, command.folder, '\t')) {
    return false;
  }
  bool behindDashes = false;
  while (std::getline(parts, part, '\t')) {
    if (behindDashes) {
      command.arguments.push_back(part);
    } else if (part == "--") {
      behindDashes = true;
    } else {
      command.variables.push_back(part);
    }
  }
  return !command.arguments.empty();
}

std::vector<char*> PointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

int ExitStatus(int status) {
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

double Microseconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
}

void RunOnce(Command& command, bool counted) {
  const std::vector<char*> arguments = PointersTo(command.arguments);
  const std::vector<char*> variables = PointersTo(command.variables);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, command.folder.c_str());
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const auto start = std::chrono::steady_clock::now();
  if (posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), variables.data()) !=
      0) {
    Fail(command.arguments[0]);
  }
  int status = 0;
  rusage usage = {};
  wait4(child, &status, 0, &usage);
  const auto end = std::chrono::steady_clock::now();
  posix_spawn_file_actions_destroy(&actions);
  if (!counted) return;
  command.times.push_back(std::chrono::duration<double, std::micro>(end - start).count());
  command.cpuTimes.push_back(Microseconds(usage.ru_utime) + Microseconds(usage.ru_stime));
  command.minorFaults = usage.ru_minflt;
  command.exitStatus = ExitStatus(status);
}

// The VmHWM line of /proc/PID/status, in kB; 0 when there is none.
long PeakOf(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return atol(line.c_str() + strlen("VmHWM:"));
  }
  return 0;
}

// Peak memory in kB, read when the process is about to exit. ru_maxrss does not serve: it counts
// what the process was before it became the program, and so is never less than what the timer has.
long MeasurePeak(Command& command) {
  const std::vector<char*> arguments = PointersTo(command.arguments);
  const std::vector<char*> variables = PointersTo(command.variables);
  const pid_t child = fork();
  if (child < 0) Fail("fork");
  if (child == 0) {
    const int nowhere = open("/dev/null", O_RDWR);
    for (int descriptor = 0; descriptor < 3; ++descriptor) dup2(nowhere, descriptor);
    if (chdir(command.folder.c_str()) == 0 && ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0) {
      raise(SIGSTOP);
      execve(arguments[0], arguments.data(), variables.data());
    }
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACEEXIT | PTRACE_O_EXITKILL);
  ptrace(PTRACE_CONT, child, nullptr, nullptr);
  long peak = 0;
  while (waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
    long signal = WSTOPSIG(status);
    if (status >> 8 == (SIGTRAP | PTRACE_EVENT_EXIT << 8)) peak = PeakOf(child);
    if (signal == SIGTRAP) signal = 0;
    ptrace(PTRACE_CONT, child, nullptr, signal);
  }
  return peak;
}

double Quantile(std::vector<double> times, double share) {
  std::sort(times.begin(), times.end());
  return times[static_cast<size_t>(share * static_cast<double>(times.size()))];
}

}  // namespace

int main(int argc, char** argv) {
  const int runs = argc == 2 ? atoi(argv[1]) : 0;
  if (runs < 1) {
    fprintf(stderr, "usage: time_commands RUNS <COMMANDS >FIGURES\n");
    return 2;
  }
  std::vector<Command> commands;
  for (std::string line; std::getline(std::cin, line);) {
    if (!ParseCommand(line, commands.emplace_back())) {
      fprintf(stderr, "time_commands: not a command: %s\n", line.c_str());
      return 2;
    }
  }
  for (int run = 0; run <= runs; ++run) {
    for (Command& command : commands) RunOnce(command, run > 0);
  }
  for (Command& command : commands) {
    printf("%s\t%.1f\t%.1f\t%.1f\t%ld\t%ld\t%d\n", command.name.c_str(),
           Quantile(command.times, 0.5), Quantile(command.times, 0.25),
           Quantile(command.cpuTimes, 0.5), MeasurePeak(command), command.minorFaults,
           command.exitStatus);
  }
  return 0;
}
