#include "indexer/memory/memory_keeper.h"

#include <fcntl.h>
#include <jemalloc/jemalloc.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <charconv>
#include <chrono>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <system_error>

#include "indexer/memory/file_memory.h"
#include "indexer/report/index_error.h"

// Of the allocator that vela_index is linked with; null in what is linked with the C library's
// alone.
extern "C" int mallctl(const char* name, void* old, size_t* oldSize, void* given, size_t givenSize)
    __attribute__((weak));

namespace vela::indexer {

// What the allocator calls when it needs memory of the system, the calls that it had before, and
// where memory comes from instead of those.
struct FiledMemory : extent_hooks_t {
  explicit FiledMemory(const std::filesystem::path& path) : extent_hooks_t(), memory(path) {}

  extent_hooks_t* usual = nullptr;  // the allocator's own
  FileMemory memory;
  std::atomic<bool> isWanted = false;
};

namespace {

// Between two looks at what the process holds. Memory of the file comes back by many pages at a
// time where the system has it in its cache: by some gigabytes in a second.
constexpr std::chrono::milliseconds kLook(10);
constexpr std::chrono::milliseconds kLookAtFile(2);
// Of the file, let go of at once.
constexpr size_t kLetGoBytes = size_t{8} << 20;
// When the process is beyond its limit, this part of it is made free.
constexpr size_t kFreedPart = 8;

FiledMemory& Filed(extent_hooks_t* hooks) { return *static_cast<FiledMemory*>(hooks); }

void* Allocate(extent_hooks_t* hooks, void* address, size_t bytes, size_t alignment, bool* isZero,
               bool* isCommitted, unsigned arena) {
  FiledMemory& filed = Filed(hooks);
  if (address == nullptr && filed.isWanted) {
    void* const taken = filed.memory.Take(bytes, alignment);
    if (taken != nullptr) {
      *isZero = *isCommitted = true;
      return taken;
    }
  }
  return filed.usual->alloc(filed.usual, address, bytes, alignment, isZero, isCommitted, arena);
}

// Of these three `true` is a refusal.

// Memory in the file is not purged: it would have to be zeros afterwards, and a hole in the file
// might not be filled again. The allocator keeps it as it is, for what is asked of it next.
bool Purge(extent_hooks_t* hooks, void* address, size_t bytes, size_t from, size_t length,
           unsigned arena) {
  const FiledMemory& filed = Filed(hooks);
  return filed.memory.Has(address) ||
         filed.usual->purge_forced(filed.usual, address, bytes, from, length, arena);
}

bool Split(extent_hooks_t* /*hooks*/, void* /*address*/, size_t /*bytes*/, size_t /*first*/,
           size_t /*second*/, bool /*isCommitted*/, unsigned /*arena*/) {
  return false;
}

bool Merge(extent_hooks_t* hooks, void* first, size_t /*firstBytes*/, void* second,
           size_t /*secondBytes*/, bool /*isCommitted*/, unsigned /*arena*/) {
  const FileMemory& memory = Filed(hooks).memory;
  return memory.Has(first) != memory.Has(second);
}

// The allocator makes its arena for the largest blocks when the first one is asked for.
void AskForLargeBlock() {
  size_t bytes = 0;
  size_t size = sizeof bytes;
  if (mallctl("opt.oversize_threshold", &bytes, &size, nullptr, 0) != 0 || bytes == 0) return;
  ::operator delete(::operator new(bytes, std::nothrow));
}

// Has every arena of the allocator call `filed`. False when some of them would not.
bool Install(FiledMemory& filed) {
  AskForLargeBlock();
  unsigned arenas = 0;
  size_t size = sizeof arenas;
  if (mallctl("arenas.narenas", &arenas, &size, nullptr, 0) != 0) return false;
  size = sizeof(extent_hooks_t*);
  if (mallctl("arena.0.extent_hooks", &filed.usual, &size, nullptr, 0) != 0) return false;
  filed.alloc = &Allocate;  // what is not said here is refused, as the allocator does by itself
  filed.purge_forced = &Purge;
  filed.split = &Split;
  filed.merge = &Merge;
  for (unsigned i = 0; i < arenas; ++i) {
    const std::string arena = "arena." + std::to_string(i);
    extent_hooks_t* hooks = &filed;
    if (mallctl((arena + ".extent_hooks").c_str(), nullptr, nullptr, &hooks, size) != 0) {
      return false;
    }
    // By which it asks for more at a time. It would be ever more otherwise.
    size_t most = size_t{4} << 20;
    mallctl((arena + ".retain_grow_limit").c_str(), nullptr, nullptr, &most, sizeof most);
  }
  return true;
}

// Bytes of memory that the process holds; 0 when the system does not say.
class ResidentBytes {
 public:
  ResidentBytes() : fd_(open("/proc/self/statm", O_RDONLY | O_CLOEXEC)) {}
  ~ResidentBytes() {
    if (fd_ >= 0) close(fd_);
  }
  ResidentBytes(const ResidentBytes&) = delete;
  ResidentBytes& operator=(const ResidentBytes&) = delete;

  size_t Now() const {
    std::array<char, 128> line;
    const ssize_t got = fd_ < 0 ? -1 : pread(fd_, line.data(), line.size(), 0);
    if (got <= 0) return 0;
    const std::string_view said(line.data(), static_cast<size_t>(got));
    const size_t blank = said.find(' ');  // behind the size of all addresses
    size_t pages = 0;
    if (blank != said.npos) {
      std::from_chars(said.data() + blank + 1, said.data() + said.size(), pages);
    }
    return pages * page_;
  }

 private:
  int fd_;
  size_t page_ = static_cast<size_t>(sysconf(_SC_PAGESIZE));
};

}  // namespace

MemoryKeeper::MemoryKeeper(const std::filesystem::path& folder, const MemoryPlan& plan) {
  static std::atomic<bool> isKept = false;
  if (mallctl == nullptr || isKept.exchange(true)) return;
  // Never deleted: the allocator uses it as long as there is a process.
  static auto* const filed = new FiledMemory(folder / "memory");
  if (!Install(*filed)) return;
  filed_ = filed;
  try {
    thread_ = std::thread([this, plan] { Keep(plan); });
  } catch (const std::system_error&) {  // none to be had: everything stays in ordinary memory
  }
}

MemoryKeeper::~MemoryKeeper() {
  if (!thread_.joinable()) return;
  {
    const std::scoped_lock lock(ending_);
    isOver_ = true;
  }
  ended_.notify_one();
  thread_.join();
}

void MemoryKeeper::Check() const {
  const int failure = filed_ == nullptr ? 0 : filed_->memory.failure();
  if (failure == 0) return;
  throw IndexError(ExitStatus::kFailed,
                   "Cannot write the temporary file " + filed_->memory.path().string() + ": " +
                       strerror(failure) + ". Check the free space there, or give more --memory.");
}

void MemoryKeeper::Keep(const MemoryPlan& plan) {
  const ResidentBytes resident;
  size_t next = 0;  // of the file, to be let go of
  std::unique_lock lock(ending_);
  const auto isOver = [this] { return isOver_; };
  const auto pause = [this] { return filed_->memory.size() == 0 ? kLook : kLookAtFile; };
  while (!ended_.wait_for(lock, pause(), isOver)) {
    size_t held = resident.Now();
    filed_->isWanted = held > plan.ordinary;
    if (held <= plan.resident) continue;
    const size_t wanted = plan.resident - plan.resident / kFreedPart;
    const size_t all = filed_->memory.size();
    for (size_t done = 0; done < all && held > wanted; done += kLetGoBytes) {
      if (next >= all) next = 0;
      filed_->memory.LetGo(next, next + kLetGoBytes);
      next += kLetGoBytes;
      held = resident.Now();
    }
  }
}

}  // namespace vela::indexer
