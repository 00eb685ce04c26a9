// Times whole processes: the search program against an empty one, by turns in one run.
//
//   process_bench RUNS EMPTY_PROGRAM SEARCH_PROGRAM INDEX_DIRECTORY QUERY
//
// Prints the median wall time of both, their ratio, and the search program's peak memory.

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct Figures {
  std::vector<double> times;  // microseconds
  long peakKilobytes = 0;
  long minorFaults = 0;
};

void RunOnce(Figures& figures, std::vector<char*> arguments, char** environment) {
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const auto start = std::chrono::steady_clock::now();
  if (posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environment) != 0) {
    perror(arguments[0]);
    exit(1);
  }
  int status = 0;
  rusage usage = {};
  wait4(child, &status, 0, &usage);
  const auto end = std::chrono::steady_clock::now();
  posix_spawn_file_actions_destroy(&actions);
  figures.times.push_back(std::chrono::duration<double, std::micro>(end - start).count());
  figures.peakKilobytes = std::max(figures.peakKilobytes, usage.ru_maxrss);
  figures.minorFaults = usage.ru_minflt;
}

double Median(std::vector<double> times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    fprintf(stderr,
            "usage: process_bench RUNS EMPTY_PROGRAM SEARCH_PROGRAM INDEX_DIRECTORY QUERY\n");
    return 2;
  }
  const int runs = atoi(argv[1]);
  std::string query = std::string("QUERY_STRING=vela_query=") + argv[5];
  std::string method = "REQUEST_METHOD=GET";
  std::string script = "SCRIPT_NAME=/search.cgi";
  char* environment[] = {method.data(), query.data(), script.data(), nullptr};
  std::string directorySwitch = "/I";
  Figures empty;
  Figures search;
  for (int i = 0; i < runs; ++i) {
    RunOnce(empty, {argv[2]}, environment);
    RunOnce(search, {argv[3], directorySwitch.data(), argv[4]}, environment);
  }
  const double emptyTime = Median(empty.times);
  const double searchTime = Median(search.times);
  printf(
      "empty %.0f us, search %.0f us, ratio %.2f, difference %.0f us, peak memory %ld kB "
      "(empty %ld kB), page faults %ld\n",
      emptyTime, searchTime, searchTime / emptyTime, searchTime - emptyTime, search.peakKilobytes,
      empty.peakKilobytes, search.minorFaults);
  return 0;
}
