// postings.h: which word stands on which page, collected in bounded memory.
//
// Postings come page by page and leave word by word. What does not fit into memory is sorted and
// appended to one temporary file as a run; in the end the runs are merged.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "indexer/collect/temporary_file.h"
#include "indexer/collect/zone.h"

namespace vela::indexer {

// One word on one page; counts stop at 255.
struct Posting {
  uint32_t word = 0;  // its number in the vocabulary
  uint32_t page = 0;
  uint32_t token = 0;  // of its first occurrence, counted from the page's first token
  uint8_t total = 0;   // occurrences anywhere
  uint8_t body = 0;    // occurrences in the running text, headings included
  uint8_t zones = 0;   // Zone bits
  uint8_t blocks = 0;  // block b of the page holds the word: bit 7 - b
};

class PostingRuns {
 public:
  // `folder` is where the temporary file may lie, `memoryBytes` what may be held at a time.
  PostingRuns(const std::filesystem::path& folder, size_t memoryBytes);
  PostingRuns(const PostingRuns&) = delete;
  PostingRuns& operator=(const PostingRuns&) = delete;

  // Pages come in ascending order, each word once a page.
  void Add(const Posting& posting);
  // Lowers (or raises) what may be held from now on.
  void SetMemory(size_t memoryBytes);
  // Calls `use` for every posting by ascending word, and page within a word. Ends the collection.
  void ForEachSorted(const std::function<void(const Posting&)>& use);

  size_t runCount() const { return runs_.size(); }

 private:
  struct Run {
    uint64_t offset = 0;  // in the file, in postings
    uint64_t length = 0;  // in postings
  };
  void Spill();
  template <typename Use>
  void ForEachPlace(const std::vector<uint32_t>& places, Use use) const;
  void FreeBuffer();
  std::vector<uint32_t> SortBuffer();
  void Merge(const std::function<void(const Posting&)>& use);

  TemporaryFile file_;
  std::vector<Posting> buffer_;
  size_t bufferLimit_ = 0;
  std::vector<Run> runs_;
  uint64_t spilled_ = 0;  // postings
};

}  // namespace vela::indexer
