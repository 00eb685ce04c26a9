#include "indexer/page_workers.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace vela::indexer {

namespace {

// Blocks that one thread may be ahead of another, whatever their size.
constexpr size_t kAheadOfEach = 32;
// Blocks that are joined one after the other: for each to wake a thread takes longer than to join
// it.
constexpr size_t kTakenAtOnce = 16;

struct Made {
  Reason reason = Reason::kNone;
  PageBlock block;
  std::exception_ptr failure;  // in the place of both
  size_t bytes = 0;
};

// Where blocks wait for their turn. Items are given out in their order, so that the one whose turn
// it is has always been given to a thread, and never waits for room.
class Waiting {
 public:
  Waiting(const PageWork& work, size_t ahead) : work_(work), made_(ahead) {}

  // The next item to be made; none when there is none or the work is given up.
  std::optional<size_t> Claim() {
    std::unique_lock lock(mutex_);
    room_.wait(lock, [this] { return givenUp_ || next_ == work_.items || HasRoom(); });
    if (givenUp_ || next_ == work_.items) return std::nullopt;
    return next_++;
  }

  void Put(size_t item, Made made) {
    made.bytes = MemoryOf(made.block);
    bool isWorthwhile = false;
    {
      const std::lock_guard lock(mutex_);
      bytes_ += made.bytes;
      ++ready_;
      made_[item % made_.size()] = std::move(made);
      isWorthwhile = IsWorthwhile();
    }
    if (isWorthwhile) taking_.notify_one();
  }

  // Waits for the item whose turn it is, and takes it and those ready behind it in the place of
  // those in `out`, which were taken before.
  void Take(std::vector<Made>& out) {
    size_t before = 0;
    for (const Made& made : out) before += made.bytes;
    out.clear();
    {
      std::unique_lock lock(mutex_);
      bytes_ -= before;
      room_.notify_all();
      taking_.wait(lock, [this] { return IsWorthwhile(); });
      while (out.size() < kTakenAtOnce && IsReady()) {
        std::optional<Made>& place = made_[taken_ % made_.size()];
        out.push_back(std::move(*place));
        place.reset();
        --ready_;
        ++taken_;
      }
    }
    room_.notify_all();
  }

  void GiveUp() {
    {
      const std::lock_guard lock(mutex_);
      givenUp_ = true;
    }
    room_.notify_all();
  }

 private:
  bool HasRoom() const {
    return next_ - taken_ < made_.size() && (bytes_ < work_.waitingBytes || next_ == taken_);
  }
  // Whether the item whose turn it is has been made.
  bool IsReady() const { return made_[taken_ % made_.size()].has_value(); }
  // Whether it is taken now, or when more are ready: while there is room for the others to go on.
  bool IsWorthwhile() const {
    return IsReady() && (ready_ >= kTakenAtOnce || bytes_ >= work_.waitingBytes / 2 ||
                         next_ == work_.items || !HasRoom());
  }

  const PageWork& work_;
  std::mutex mutex_;
  std::condition_variable room_;
  std::condition_variable taking_;
  std::vector<std::optional<Made>> made_;  // item i at i % size
  size_t next_ = 0;                        // to be given out
  size_t taken_ = 0;                       // taken so far
  size_t ready_ = 0;                       // blocks in `made_`
  size_t bytes_ = 0;                       // of those, and of those taken last
  bool givenUp_ = false;
};

Made MakeOne(const MakeBlock& make, size_t item) {
  Made made;
  try {
    made.reason = make(item, made.block);
  } catch (...) {
    made.block = {};
    made.failure = std::current_exception();
  }
  return made;
}

// The threads, which end before what they work on.
class Workers {
 public:
  explicit Workers(Waiting& waiting) : waiting_(waiting) {}
  ~Workers() {
    waiting_.GiveUp();
    for (std::thread& thread : threads_) thread.join();
  }
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  // False when there are no more threads to be had.
  bool Add(MakeBlock make) try {
    threads_.emplace_back([this, make = std::move(make)] {
      while (const std::optional<size_t> item = waiting_.Claim()) {
        waiting_.Put(*item, MakeOne(make, *item));
      }
    });
    return true;
  } catch (const std::system_error&) {
    return false;
  }
  bool empty() const { return threads_.empty(); }

 private:
  Waiting& waiting_;
  std::vector<std::thread> threads_;
};

}  // namespace

void ForEachBlock(const PageWork& work, const std::function<MakeBlock()>& newMaker,
                  const UseBlock& use) {
  Waiting waiting(work, work.jobs * kAheadOfEach);
  Workers workers(waiting);
  if (work.jobs > 1) {
    for (unsigned i = 0; i < work.jobs && workers.Add(newMaker()); ++i) continue;
  }
  const MakeBlock ownMaker = workers.empty() ? newMaker() : MakeBlock();
  std::vector<Made> taken;
  for (size_t item = 0; item < work.items;) {
    if (ownMaker) {
      taken.clear();
      taken.push_back(MakeOne(ownMaker, item));
    } else {
      waiting.Take(taken);
    }
    for (Made& made : taken) {
      if (made.failure) std::rethrow_exception(made.failure);
      use(item++, made.reason, made.block);
    }
  }
}

}  // namespace vela::indexer
