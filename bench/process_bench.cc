// Times whole processes: searches against an empty program and against each other, by turns in one
// run.
//
//   process_bench RUNS EMPTY_PROGRAM SEARCH_PROGRAM (INDEX_DIRECTORY QUERY)...
//
// Prints for each search its median wall time, how it compares with the empty program and with the
// first search, and its peak memory.

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
  if (argc < 6 || argc % 2 != 0) {
    fprintf(stderr,
            "usage: process_bench RUNS EMPTY_PROGRAM SEARCH_PROGRAM (INDEX_DIRECTORY QUERY)...\n");
    return 2;
  }
  const int runs = atoi(argv[1]);
  const auto searches = static_cast<size_t>(argc - 4) / 2;
  std::vector<Figures> figures(searches);
  Figures empty;
  std::string method = "REQUEST_METHOD=GET";
  std::string script = "SCRIPT_NAME=/search.cgi";
  std::string directorySwitch = "/I";
  for (int run = 0; run < runs; ++run) {
    for (size_t i = 0; i < searches; ++i) {
      std::string query = std::string("QUERY_STRING=vela_query=") + argv[5 + 2 * i];
      char* environment[] = {method.data(), query.data(), script.data(), nullptr};
      RunOnce(empty, {argv[2]}, environment);
      RunOnce(figures[i], {argv[3], directorySwitch.data(), argv[4 + 2 * i]}, environment);
    }
  }
  const double emptyTime = Median(empty.times);
  const double firstTime = Median(figures[0].times);
  printf("empty program %.0f us, peak memory %ld kB\n", emptyTime, empty.peakKilobytes);
  for (size_t i = 0; i < searches; ++i) {
    const double time = Median(figures[i].times);
    printf(
        "%s: %.0f us (%.2f times empty, %+.0f us; against the first %+.0f us), "
        "peak memory %ld kB, page faults %ld\n",
        argv[5 + 2 * i], time, time / emptyTime, time - emptyTime, time - firstTime,
        figures[i].peakKilobytes, figures[i].minorFaults);
  }
  return 0;
}
