#include "indexer/collect/postings.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <queue>

#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

constexpr size_t kLeastBuffered = 4096;  // postings; fewer would make more runs than can be merged

uint64_t SortKey(const Posting& posting) { return uint64_t{posting.word} << 32 | posting.page; }

[[noreturn]] void Fail(const char* what, const std::filesystem::path& path) {
  throw IndexError(ExitStatus::kFailed, std::string("Cannot ") + what + " the temporary file " +
                                            path.string() + ": " + strerror(errno) +
                                            ". Check the free space there, or give more --memory.");
}

// One run on its way through the merge.
struct RunReader {
  uint64_t next = 0;  // the first posting not yet read, in the file
  uint64_t left = 0;  // postings from there on
  std::vector<Posting> window;
  size_t at = 0;
};

}  // namespace

PostingRuns::PostingRuns(const std::filesystem::path& folder, size_t memoryBytes)
    : path_(folder / "postings.tmp") {
  SetMemory(memoryBytes);
}

PostingRuns::~PostingRuns() {
  if (fd_ >= 0) close(fd_);
}

void PostingRuns::SetMemory(size_t memoryBytes) {
  bufferLimit_ = std::max(kLeastBuffered, memoryBytes / sizeof(Posting));
}

void PostingRuns::Add(const Posting& posting) {
  if (buffer_.size() >= bufferLimit_) Spill();
  // Grown by hand: doubling would hold twice the limit for a moment.
  if (buffer_.size() == buffer_.capacity()) {
    buffer_.reserve(std::min(bufferLimit_, buffer_.size() + buffer_.size() / 2 + kLeastBuffered));
  }
  buffer_.push_back(posting);
}

void PostingRuns::SortBuffer() { std::ranges::sort(buffer_, {}, SortKey); }

void PostingRuns::Spill() {
  if (fd_ < 0) {
    fd_ = open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd_ < 0) Fail("create", path_);
    unlink(path_.c_str());  // gone with the process, however it ends
  }
  SortBuffer();
  const auto* bytes = reinterpret_cast<const char*>(buffer_.data());
  const size_t length = buffer_.size() * sizeof(Posting);
  size_t done = 0;
  while (done < length) {
    const ssize_t wrote = write(fd_, bytes + done, length - done);
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote < 0) Fail("write", path_);
    done += static_cast<size_t>(wrote);
  }
  runs_.push_back({spilled_, buffer_.size()});
  spilled_ += buffer_.size();
  buffer_.clear();
}

void PostingRuns::ForEachSorted(const std::function<void(const Posting&)>& use) {
  if (runs_.empty()) {
    SortBuffer();
    std::ranges::for_each(buffer_, use);
  } else {
    if (!buffer_.empty()) Spill();
    buffer_ = {};
    Merge(use);
  }
  buffer_ = {};
}

void PostingRuns::Merge(const std::function<void(const Posting&)>& use) {
  const size_t window = std::clamp<size_t>(bufferLimit_ / runs_.size(), 256, 1 << 18);
  std::vector<RunReader> readers(runs_.size());
  const auto fill = [&](RunReader& reader) {
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(reader.left, window));
    reader.window.resize(wanted);
    reader.at = 0;
    auto* bytes = reinterpret_cast<char*>(reader.window.data());
    const size_t length = wanted * sizeof(Posting);
    size_t done = 0;
    while (done < length) {
      const ssize_t got = pread(fd_, bytes + done, length - done,
                                static_cast<off_t>(reader.next * sizeof(Posting) + done));
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) Fail("read", path_);
      done += static_cast<size_t>(got);
    }
    reader.next += wanted;
    reader.left -= wanted;
  };
  // The reader with the smallest posting on top; equal keys do not occur.
  const auto later = [&](uint32_t a, uint32_t b) {
    return SortKey(readers[a].window[readers[a].at]) > SortKey(readers[b].window[readers[b].at]);
  };
  std::priority_queue<uint32_t, std::vector<uint32_t>, decltype(later)> queue(later);
  for (uint32_t r = 0; r < readers.size(); ++r) {
    readers[r].next = runs_[r].offset;
    readers[r].left = runs_[r].length;
    fill(readers[r]);
    queue.push(r);
  }
  while (!queue.empty()) {
    const uint32_t r = queue.top();
    queue.pop();
    RunReader& reader = readers[r];
    use(reader.window[reader.at]);
    if (++reader.at == reader.window.size()) {
      if (reader.left == 0) continue;
      fill(reader);
    }
    queue.push(r);
  }
}

}  // namespace vela::indexer
