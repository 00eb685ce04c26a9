// child_process.h: a program that reads a document in a process of its own.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "indexer/extract/reading_budget.h"

namespace vela::indexer {

// An open file, closed with its owner.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int opened) : fd_(opened) {}
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();

  int get() const { return fd_; }
  bool isOpen() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

// A file in memory that nobody else sees; not open when there is no memory for it.
Descriptor NewMemoryFile();

// What the process has open at its start.
struct ChildFiles {
  int input = -1;  // these become its descriptors 0, 1 and 2; -1: it gets /dev/null
  int output = -1;
  int error = -1;
};

// The exit status of a program that cannot run here, as the dynamic linker has it.
inline constexpr int kCannotRun = 127;

class ChildProcess {
 public:
  ChildProcess() = default;
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&& other) noexcept;
  // Kills it when it still runs.
  ~ChildProcess();

  // Starts the program of that absolute path with an empty environment but for a UTF-8 locale;
  // `arguments` without its name. False when it cannot be started. Any number of threads may start
  // one at once.
  [[nodiscard]] bool Start(const std::string& program, const std::vector<std::string>& arguments,
                           const ChildFiles& files);
  bool isRunning() const { return pid_ > 0; }

  // Waits for its end: its exit status, or -1 when a signal ended it. When `budget` is used up
  // before, it is killed, the result is -1 and `budget.status` tells why.
  int Wait(ReadingBudget& budget);

 private:
  void Kill();

  pid_t pid_ = -1;
};

}  // namespace vela::indexer
