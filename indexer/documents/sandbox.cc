#include "indexer/documents/sandbox.h"

#include <fcntl.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace vela::indexer {

namespace {

// Under an address sanitizer the address space says nothing about memory; and the sanitizer of
// undefined behaviour that goes with it looks through a pipe whether an object can be read.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

// The descriptor from which a program is started. No other file can get a number that high, so that
// it happens once: the descriptor is closed by the start.
constexpr int kProgramDescriptor = 500;
constexpr rlim_t kOpenFiles = 64;

// To compute, to read and write what is open, to tell the time, and to end.
constexpr int kCalls[] = {
    SCMP_SYS(read),
    SCMP_SYS(readv),
    SCMP_SYS(pread64),
    SCMP_SYS(write),
    SCMP_SYS(writev),
    SCMP_SYS(lseek),
    SCMP_SYS(close),
    SCMP_SYS(fstat),
    SCMP_SYS(brk),
    SCMP_SYS(mmap),
    SCMP_SYS(munmap),
    SCMP_SYS(mremap),
    SCMP_SYS(madvise),
    SCMP_SYS(mprotect),
    SCMP_SYS(futex),
    SCMP_SYS(clock_gettime),
    SCMP_SYS(clock_getres),
    SCMP_SYS(gettimeofday),
    SCMP_SYS(time),
    SCMP_SYS(getrandom),
    SCMP_SYS(rt_sigaction),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(sigaltstack),
    SCMP_SYS(getpid),
    SCMP_SYS(gettid),
    SCMP_SYS(sched_yield),
    SCMP_SYS(exit),
    SCMP_SYS(exit_group),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(getrusage),
    SCMP_SYS(sched_getaffinity),
};

// Of a program that is started, besides: to load itself, and to look for files.
constexpr int kProgramCalls[] = {
    SCMP_SYS(newfstatat),      SCMP_SYS(stat),       SCMP_SYS(lstat),      SCMP_SYS(statx),
    SCMP_SYS(access),          SCMP_SYS(faccessat),  SCMP_SYS(faccessat2), SCMP_SYS(readlink),
    SCMP_SYS(readlinkat),      SCMP_SYS(getdents64), SCMP_SYS(getcwd),     SCMP_SYS(arch_prctl),
    SCMP_SYS(set_tid_address), SCMP_SYS(rseq),       SCMP_SYS(prlimit64),  SCMP_SYS(getrlimit),
    SCMP_SYS(set_robust_list), SCMP_SYS(uname),      SCMP_SYS(sysinfo),    SCMP_SYS(fadvise64),
    SCMP_SYS(getuid),          SCMP_SYS(geteuid),    SCMP_SYS(getgid),     SCMP_SYS(getegid),
    SCMP_SYS(fstatfs),         SCMP_SYS(statfs),     SCMP_SYS(dup),        SCMP_SYS(dup2),
};

class Filter {
 public:
  // What is not allowed fails as if the user might not do it.
  Filter() : filter_(seccomp_init(SCMP_ACT_ERRNO(EPERM)), &seccomp_release) {}

  template <typename... Conditions>
  void Allow(int call, const Conditions&... conditions) {
    // A call that this kind of machine does not have needs no leave.
    const int result =
        seccomp_rule_add(filter_.get(), SCMP_ACT_ALLOW, call,
                         static_cast<unsigned>(sizeof...(conditions)), conditions...);
    isWhole_ = isWhole_ && (result == 0 || result == -EDOM || result == -EINVAL);
  }
  template <size_t count>
  void AllowAll(const int (&calls)[count]) {
    for (const int call : calls) Allow(call);
  }
  bool Load() { return isWhole_ && filter_ != nullptr && seccomp_load(filter_.get()) == 0; }

 private:
  std::unique_ptr<void, decltype(&seccomp_release)> filter_;
  bool isWhole_ = true;
};

bool Limit(__rlimit_resource_t resource, rlim_t most) {
  struct rlimit now = {};
  if (getrlimit(resource, &now) != 0) return false;
  const rlim_t limit = std::min(most, now.rlim_max);
  now = {limit, limit};
  return setrlimit(resource, &now) == 0;
}

bool SetLimits(const SandboxLimits& limits) {
  return (kIsSanitized || Limit(RLIMIT_AS, limits.memory)) && Limit(RLIMIT_CPU, limits.seconds) &&
         Limit(RLIMIT_FSIZE, limits.written) && Limit(RLIMIT_CORE, 0) &&
         Limit(RLIMIT_NOFILE, kOpenFiles) && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0;
}

}  // namespace

bool LockIn(const SandboxLimits& limits) {
  Filter filter;
  filter.AllowAll(kCalls);
  if (kIsSanitized) filter.AllowAll({SCMP_SYS(pipe), SCMP_SYS(pipe2)});
  return SetLimits(limits) && filter.Load();
}

void RunLockedIn(const std::string& program, const std::vector<std::string>& arguments,
                 const SandboxLimits& limits) {
  constexpr scmp_datum_t kWrites = O_WRONLY | O_RDWR | O_CREAT | O_TRUNC;
  const int opened = open(program.c_str(), O_PATH | O_CLOEXEC);
  if (opened < 0 || dup3(opened, kProgramDescriptor, O_CLOEXEC) < 0) return;
  close(opened);
  std::vector<char*> argv;
  std::vector<std::string> texts = arguments;
  argv.reserve(texts.size() + 1);
  for (std::string& text : texts) argv.push_back(text.data());
  argv.push_back(nullptr);
  Filter filter;
  filter.AllowAll(kCalls);
  filter.AllowAll(kProgramCalls);
  filter.Allow(SCMP_SYS(open), SCMP_A1(SCMP_CMP_MASKED_EQ, kWrites, 0));
  filter.Allow(SCMP_SYS(openat), SCMP_A2(SCMP_CMP_MASKED_EQ, kWrites, 0));
  for (const int asked : {F_GETFD, F_SETFD, F_GETFL, F_DUPFD, F_DUPFD_CLOEXEC}) {
    filter.Allow(SCMP_SYS(fcntl), SCMP_A1(SCMP_CMP_EQ, static_cast<scmp_datum_t>(asked)));
  }
  filter.Allow(SCMP_SYS(execveat), SCMP_A0(SCMP_CMP_EQ, kProgramDescriptor),
               SCMP_A4(SCMP_CMP_EQ, AT_EMPTY_PATH));
  if (SetLimits(limits) && filter.Load()) fexecve(kProgramDescriptor, argv.data(), environ);
}

}  // namespace vela::indexer
