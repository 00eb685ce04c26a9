#include "indexer/collect/postings.h"

#include <algorithm>
#include <queue>
#include <span>
#include <string_view>

namespace vela::indexer {

namespace {

constexpr size_t kLeastBuffered = 4096;  // postings; fewer would make more runs than can be merged

uint64_t SortKey(const Posting& posting) { return uint64_t{posting.word} << 32 | posting.page; }

// One run on its way through the merge.
struct RunReader {
  uint64_t next = 0;  // the first posting not yet read, in the file
  uint64_t left = 0;  // postings from there on
  std::vector<Posting> window;
  size_t at = 0;
};

std::string_view BytesOf(std::span<const Posting> postings) {
  return {reinterpret_cast<const char*>(postings.data()), postings.size_bytes()};
}

}  // namespace

PostingRuns::PostingRuns(const std::filesystem::path& folder, size_t memoryBytes)
    : file_(folder / "postings.tmp") {
  SetMemory(memoryBytes);
}

void PostingRuns::SetMemory(size_t memoryBytes) {
  bufferLimit_ = std::max(kLeastBuffered, memoryBytes / sizeof(Posting));
}

void PostingRuns::Add(const Posting& posting) {
  if (buffer_.size() >= bufferLimit_) Spill();
  // Grown by hand: doubling would hold twice the limit for a moment.
  if (buffer_.size() == buffer_.capacity()) {
    // What is never used of the last step takes no memory.
    const bool isLast = buffer_.size() >= bufferLimit_ / 4;
    buffer_.reserve(isLast ? bufferLimit_ : buffer_.size() * 2 + kLeastBuffered);
  }
  buffer_.push_back(posting);
}

// An empty list assigned from {} would keep its memory.
void PostingRuns::FreeBuffer() { buffer_ = std::vector<Posting>(); }

void PostingRuns::SortBuffer() { std::ranges::sort(buffer_, {}, SortKey); }

void PostingRuns::Spill() {
  SortBuffer();
  file_.Append(BytesOf(buffer_));
  runs_.push_back({spilled_, buffer_.size()});
  spilled_ += buffer_.size();
  buffer_.clear();
  if (buffer_.capacity() > bufferLimit_) FreeBuffer();
}

void PostingRuns::ForEachSorted(const std::function<void(const Posting&)>& use) {
  if (runs_.empty()) {
    SortBuffer();
    std::ranges::for_each(buffer_, use);
  } else {
    if (!buffer_.empty()) Spill();
    FreeBuffer();
    Merge(use);
    file_.Clear();
  }
  FreeBuffer();
}

void PostingRuns::Merge(const std::function<void(const Posting&)>& use) {
  const size_t window = std::clamp<size_t>(bufferLimit_ / runs_.size(), 256, 1 << 18);
  std::vector<RunReader> readers(runs_.size());
  const auto fill = [&](RunReader& reader) {
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(reader.left, window));
    reader.window.resize(wanted);
    reader.at = 0;
    file_.Read(reader.next * sizeof(Posting),
               {reinterpret_cast<char*>(reader.window.data()), wanted * sizeof(Posting)});
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
