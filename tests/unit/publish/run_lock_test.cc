#include "indexer/publish/run_lock.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

TEST(RunLock, IsHeldByOneAtATime) {
  const support::ScratchDirectory scratch;
  const fs::path file = scratch.path() / "lock";
  RunLock first;
  RunLock second;
  EXPECT_EQ(first.TryTake(file), LockStatus::kHeld);
  EXPECT_EQ(second.TryTake(file), LockStatus::kBusy);
  second.Release();  // what it does not hold
  EXPECT_TRUE(fs::exists(file));
  first.Release();
  EXPECT_FALSE(fs::exists(file));
  EXPECT_EQ(second.TryTake(file), LockStatus::kHeld);
}

TEST(RunLock, TheFileOfAKilledProcessIsInNobodysWay) {
  const support::ScratchDirectory scratch;
  WriteFile(scratch.path() / "lock", "");
  RunLock lock;
  EXPECT_EQ(lock.TryTake(scratch.path() / "lock"), LockStatus::kHeld);
}

// Whoever opened the file just before it was removed must not take the lock for the index's.
TEST(RunLock, ARemovedFileHoldsNoLock) {
  const support::ScratchDirectory scratch;
  const fs::path file = scratch.path() / "lock";
  RunLock first;
  ASSERT_EQ(first.TryTake(file), LockStatus::kHeld);
  fs::remove(file);
  RunLock second;
  EXPECT_EQ(second.TryTake(file), LockStatus::kHeld);
  first.Release();
  EXPECT_TRUE(fs::exists(file));
}

TEST(RunLock, SaysWhenThereCanBeNone) {
  const support::ScratchDirectory scratch;
  RunLock lock;
  EXPECT_EQ(lock.TryTake(scratch.path() / "none/lock"), LockStatus::kFailed);
  EXPECT_EQ(errno, ENOENT);
}

TEST(RunLock, AnotherUserIsTold) {
  // Only root can be two users; to anyone else a file that cannot be written looks the same.
  const bool isRoot = geteuid() == 0;
  const support::ScratchDirectory scratch;
  ASSERT_EQ(chmod(scratch.path().c_str(), 0755), 0);
  const fs::path file = scratch.path() / "lock";
  RunLock first;
  ASSERT_EQ(first.TryTake(file), LockStatus::kHeld);
  ASSERT_EQ(chmod(file.c_str(), isRoot ? 0644 : 0444), 0);
  if (isRoot) {
    ASSERT_EQ(seteuid(65534), 0);
  }
  RunLock second;
  const LockStatus status = second.TryTake(file);
  if (isRoot) {
    ASSERT_EQ(seteuid(0), 0);
  }
  EXPECT_EQ(status, LockStatus::kBusy);
}

}  // namespace
}  // namespace vela::indexer
