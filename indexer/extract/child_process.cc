#include "indexer/extract/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <utility>

namespace vela::indexer {

namespace {

// Between two looks at the clock and at whether the run is to stop.
constexpr int kLookMilliseconds = 50;

// Waits for the end of a process whose end is near or certain. Its exit status, or -1.
int Reap(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

struct FileActions {
  FileActions() { posix_spawn_file_actions_init(&actions); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { posix_spawn_file_actions_destroy(&actions); }

  void Give(int file, int as, int mode) {
    if (file >= 0) {
      posix_spawn_file_actions_adddup2(&actions, file, as);
    } else {
      posix_spawn_file_actions_addopen(&actions, as, "/dev/null", mode, 0);
    }
  }

  posix_spawn_file_actions_t actions;
};

}  // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(fd_, other.fd_);
  return *this;
}

Descriptor::~Descriptor() {
  if (fd_ >= 0) close(fd_);
}

Descriptor NewMemoryFile() { return Descriptor(memfd_create("document", MFD_CLOEXEC)); }

ChildProcess::ChildProcess(ChildProcess&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
  std::swap(pid_, other.pid_);
  return *this;
}

ChildProcess::~ChildProcess() { Kill(); }

void ChildProcess::Kill() {
  if (!isRunning()) return;
  kill(pid_, SIGKILL);
  Reap(std::exchange(pid_, -1));
}

bool ChildProcess::Start(const std::string& program, const std::vector<std::string>& arguments,
                         const ChildFiles& files) {
  Kill();
  FileActions given;
  given.Give(files.input, STDIN_FILENO, O_RDONLY);
  given.Give(files.output, STDOUT_FILENO, O_WRONLY);
  given.Give(files.error, STDERR_FILENO, O_WRONLY);
  std::string name = std::filesystem::path(program).filename().string();
  std::vector<std::string> texts = arguments;
  std::vector<char*> argv = {name.data()};
  for (std::string& text : texts) argv.push_back(text.data());
  argv.push_back(nullptr);
  char locale[] = "LC_ALL=C.UTF-8";
  char* const environment[] = {locale, nullptr};
  pid_t started = -1;
  if (posix_spawn(&started, program.c_str(), &given.actions, nullptr, argv.data(), environment) !=
      0) {
    return false;
  }
  pid_ = started;
  return true;
}

int ChildProcess::Wait(ReadingBudget& budget) {
  if (!isRunning()) return -1;
  const Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, pid_, 0)));
  if (!process.isOpen()) {
    Kill();
    return -1;
  }
  for (;;) {
    struct pollfd ended = {process.get(), POLLIN, 0};
    if (poll(&ended, 1, kLookMilliseconds) > 0) return Reap(std::exchange(pid_, -1));
    CheckBudget(budget);
    if (budget.status == Reason::kNone) continue;
    Kill();
    return -1;
  }
}

}  // namespace vela::indexer
