#include "indexer/memory/file_memory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <span>
#include <vector>

#include "support/scratch_directory.h"

namespace vela::indexer {
namespace {

constexpr size_t kMegabyte = size_t{1} << 20;

// Each page of it with another byte.
void Fill(std::span<char> bytes) {
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>('a' + i / 4096 % 23);
}

bool IsFilled(std::span<const char> bytes) {
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] != static_cast<char>('a' + i / 4096 % 23)) return false;
  }
  return true;
}

// Pages of these that the process has at hand.
size_t ResidentPages(std::span<const char> bytes) {
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  const int map = open("/proc/self/pagemap", O_RDONLY | O_CLOEXEC);
  std::vector<uint64_t> entries(bytes.size() / page);
  const auto at = reinterpret_cast<uintptr_t>(bytes.data()) / page * sizeof(uint64_t);
  const ssize_t got =
      pread(map, entries.data(), entries.size() * sizeof(uint64_t), static_cast<off_t>(at));
  close(map);
  EXPECT_EQ(got, static_cast<ssize_t>(entries.size() * sizeof(uint64_t)));
  return static_cast<size_t>(
      std::ranges::count_if(entries, [](uint64_t entry) { return entry >> 63 != 0; }));
}

std::span<char> Take(FileMemory& memory, size_t bytes, size_t alignment = 4096) {
  return {static_cast<char*>(memory.Take(bytes, alignment)), bytes};
}

TEST(FileMemory, GivesZerosWhereTheyAreAskedFor) {
  const support::ScratchDirectory scratch;
  FileMemory memory(scratch.path() / "memory");
  EXPECT_EQ(memory.size(), 0u);
  const std::span<char> first = Take(memory, 3 * 4096);
  const std::span<char> aligned = Take(memory, 9 * kMegabyte, 2 * kMegabyte);
  ASSERT_NE(first.data(), nullptr);
  ASSERT_NE(aligned.data(), nullptr);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(aligned.data()) % (2 * kMegabyte), 0u);
  EXPECT_GE(aligned.data(), first.data() + first.size());
  for (const std::span<char> each : {first, aligned}) {
    EXPECT_EQ(std::ranges::count(each, '\0'), static_cast<ptrdiff_t>(each.size()));
    EXPECT_TRUE(memory.Has(each.data()));
    EXPECT_TRUE(memory.Has(&each.back()));
  }
  EXPECT_EQ(memory.size(), static_cast<size_t>(aligned.data() + aligned.size() - first.data()));
  EXPECT_FALSE(memory.Has(&memory));
  EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));  // the file has no name
}

TEST(FileMemory, KeepsWhatItLetsGoOf) {
  const support::ScratchDirectory scratch;
  FileMemory memory(scratch.path() / "memory");
  const std::span<char> bytes = Take(memory, 8 * kMegabyte);
  ASSERT_NE(bytes.data(), nullptr);
  Fill(bytes);
  EXPECT_EQ(ResidentPages(bytes), 2048u);
  memory.LetGo(0, 2 * kMegabyte);
  EXPECT_EQ(ResidentPages(bytes), 1536u);
  memory.LetGo(4 * kMegabyte, 100 * kMegabyte);  // no more than there is
  EXPECT_EQ(ResidentPages(bytes), 512u);
  memory.LetGo(9 * kMegabyte, 10 * kMegabyte);
  EXPECT_TRUE(IsFilled(bytes));
  // It can be written again.
  memory.LetGo(0, memory.size());
  std::ranges::fill(bytes, 'z');
  memory.LetGo(0, memory.size());
  EXPECT_EQ(std::ranges::count(bytes, 'z'), static_cast<ptrdiff_t>(bytes.size()));
}

TEST(FileMemory, TakesNoFileWithoutBeingAsked) {
  const FileMemory memory("/none/memory");
  EXPECT_EQ(memory.failure(), 0);
}

TEST(FileMemory, SaysWhereItCannotBe) {
  const support::ScratchDirectory scratch;
  FileMemory memory(scratch.path() / "none" / "memory");
  EXPECT_EQ(memory.Take(4096, 4096), nullptr);
  EXPECT_EQ(memory.failure(), ENOENT);
}

TEST(FileMemory, HasAnEnd) {
  const support::ScratchDirectory scratch;
  FileMemory memory(scratch.path() / "memory");
  EXPECT_EQ(memory.Take(FileMemory::kMostBytes + 1, 1), nullptr);
  EXPECT_EQ(memory.Take(SIZE_MAX, 1), nullptr);
  EXPECT_EQ(memory.failure(), ENOMEM);
}

// The files of the process may have 4 MB for a while.
class SmallFiles {
 public:
  SmallFiles() {
    getrlimit(RLIMIT_FSIZE, &former_);
    const struct rlimit small = {.rlim_cur = 4 * kMegabyte, .rlim_max = former_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
  }
  ~SmallFiles() { setrlimit(RLIMIT_FSIZE, &former_); }
  SmallFiles(const SmallFiles&) = delete;
  SmallFiles& operator=(const SmallFiles&) = delete;

 private:
  struct rlimit former_ = {};
};

TEST(FileMemory, EndsWhereTheFileMayNotGrow) {
  const support::ScratchDirectory scratch;
  FileMemory memory(scratch.path() / "memory");
  const SmallFiles limited;
  const std::span<char> bytes = Take(memory, 4 * kMegabyte);
  ASSERT_NE(bytes.data(), nullptr);
  EXPECT_EQ(memory.Take(1, 1), nullptr);
  EXPECT_EQ(memory.failure(), EFBIG);
  Fill(bytes);  // what was taken stays
  memory.LetGo(0, memory.size());
  EXPECT_TRUE(IsFilled(bytes));
}

}  // namespace
}  // namespace vela::indexer
