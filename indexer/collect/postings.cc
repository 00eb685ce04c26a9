#include "indexer/collect/postings.h"

#include <algorithm>
#include <functional>
#include <numeric>
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
  constexpr size_t kPostingBytes =
      sizeof(Posting) + sizeof(uint32_t);  // with its place when sorted
  bufferLimit_ = std::max(kLeastBuffered, memoryBytes / kPostingBytes);
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

// The places of the postings in the buffer, in their order.
std::vector<uint32_t> PostingRuns::SortBuffer() {
  uint32_t words = 0;
  for (const Posting& posting : buffer_) words = std::max(words, posting.word + 1);
  // Of few postings, counting the words would take longer.
  if (words / 8 > buffer_.size()) {
    std::ranges::sort(buffer_, {}, SortKey);
    std::vector<uint32_t> places(buffer_.size());
    std::iota(places.begin(), places.end(), 0U);
    return places;
  }
  // Pages came in ascending order: that of the words is all there is to find.
  std::vector<uint32_t> next(words);
  for (const Posting& posting : buffer_) ++next[posting.word];
  std::exclusive_scan(next.begin(), next.end(), next.begin(), 0U);
  std::vector<uint32_t> places(buffer_.size());
  for (uint32_t i = 0; i < buffer_.size(); ++i) places[next[buffer_[i].word]++] = i;
  return places;
}

template <typename Use>
void PostingRuns::ForEachPlace(const std::vector<uint32_t>& places, Use use) const {
  constexpr size_t kAhead = 16;  // on their way into the processor's cache
  for (size_t i = 0; i < places.size(); ++i) {
    if (i + kAhead < places.size()) __builtin_prefetch(&buffer_[places[i + kAhead]]);
    use(buffer_[places[i]]);
  }
}

void PostingRuns::Spill() {
  ForEachPlace(SortBuffer(), [this](const Posting& posting) {
    file_.Append(BytesOf({&posting, 1}));
  });
  runs_.push_back({spilled_, buffer_.size()});
  spilled_ += buffer_.size();
  buffer_.clear();
  if (buffer_.capacity() > bufferLimit_) FreeBuffer();
}

void PostingRuns::ForEachSorted(const std::function<void(const Posting&)>& use) {
  if (runs_.empty()) {
    ForEachPlace(SortBuffer(), use);
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
  // By the word that comes next in each run, and the run. Pages came in ascending order: the
  // postings of a word in one run stand before those in the next.
  std::priority_queue<uint64_t, std::vector<uint64_t>, std::greater<>> queue;
  const auto add = [&](uint32_t r) {
    queue.push(uint64_t{readers[r].window[readers[r].at].word} << 32 | r);
  };
  for (uint32_t r = 0; r < readers.size(); ++r) {
    readers[r].next = runs_[r].offset;
    readers[r].left = runs_[r].length;
    fill(readers[r]);
    add(r);
  }
  while (!queue.empty()) {
    const auto r = static_cast<uint32_t>(queue.top());
    const auto word = static_cast<uint32_t>(queue.top() >> 32);
    queue.pop();
    RunReader& reader = readers[r];
    bool hasMore = true;
    while (hasMore && reader.window[reader.at].word == word) {
      use(reader.window[reader.at]);
      if (++reader.at != reader.window.size()) continue;
      hasMore = reader.left != 0;
      if (hasMore) fill(reader);
    }
    if (hasMore) add(r);
  }
}

}  // namespace vela::indexer
