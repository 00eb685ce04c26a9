#include "indexer/documents/sandbox.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace vela::indexer {
namespace {

// In a process of its own: what is given up there is given up for good.
template <typename Act>
void ExpectRefused(const Act& act) {
  EXPECT_EXIT(
      {
        if (!LockIn({})) _exit(2);
        errno = 0;
        const bool failed = act() < 0;
        _exit(failed && errno == EPERM ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST(Sandbox, RefusesWhatNoReaderNeeds) {
  ExpectRefused([] { return open("/etc/passwd", O_RDONLY); });
  ExpectRefused([] { return open("/tmp/vela_sandbox_test", O_WRONLY | O_CREAT, 0600); });
  ExpectRefused([] { return socket(AF_INET, SOCK_STREAM, 0); });
  ExpectRefused([] { return fork(); });
  ExpectRefused([] { return execl("/bin/true", "true", nullptr); });
  ExpectRefused([] { return kill(getppid(), 0); });
  ExpectRefused([] { return unlink("/tmp/vela_sandbox_test"); });
}

TEST(Sandbox, LeavesMemoryAndWhatIsOpen) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  EXPECT_EXIT(
      {
        if (!LockIn({})) _exit(2);
        char* memory = static_cast<char*>(malloc(size_t{50} << 20));
        if (memory == nullptr) _exit(3);
        memory[0] = 'x';
        const bool told = write(ends[1], memory, 1) == 1 && read(ends[0], memory, 1) == 1;
        _exit(told ? 0 : 4);
      },
      testing::ExitedWithCode(0), "");
}

TEST(Sandbox, AProgramReadsFilesAndDoesNothingElse) {
  const auto run = [](const char* script) {
    RunLockedIn("/bin/sh", {"sh", "-c", script}, {.written = 1000});
    _exit(127);
  };
  EXPECT_EXIT(run("read line </etc/passwd && exit 7"), testing::ExitedWithCode(7), "");
  EXPECT_EXIT(run("echo x >/tmp/vela_sandbox_test || exit 8"), testing::ExitedWithCode(8), "");
  EXPECT_EXIT(run("exec /bin/true"), testing::ExitedWithCode(126), "");
  EXPECT_EXIT(run("(exit 0)"), testing::ExitedWithCode(2), "");  // no process beside it
}

}  // namespace
}  // namespace vela::indexer
