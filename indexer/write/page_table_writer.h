// page_table_writer.h: the two files with a record and a line for every page (format/page_info.h,
// in the small layout, and format/page_data.h).
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "indexer/collect/chunked_list.h"
#include "indexer/collect/page_entry.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

// The texts of a line of the page data as they stand there; see StoredText and StoredAddress.
struct PageLine {
  std::string address;
  std::string title;
  std::string description;
  std::string image;
};

class PageTableWriter {
 public:
  PageTableWriter(const std::filesystem::path& info, const std::filesystem::path& data);
  // Pages are numbered from 0 on.
  void AddPage(const PageEntry& page);
  // Where the line of a page begins in the page data.
  uint64_t LineAt(uint32_t page);
  // The line as it was written.
  PageLine ReadLine(uint32_t page);
  // Adds a line that is no page's: no search finds it, no count has it. Returns where it begins.
  uint64_t AddLine(const PageLine& line);
  // The next three change what was written of a page; many of them take little time in the order of
  // the pages.

  // Puts another date in the place of the page's: seconds since 1970, as in a PageEntry.
  void SetTime(uint32_t page, int64_t time);
  // Adds categories to those of a page: a set of the same size (see category_set.h).
  void AddToCategories(uint32_t page, std::string_view categories);
  // Sets the mass of the page's title (format/word_weight.h), which AddPage has made room for.
  void SetTitleMass(uint32_t page, uint32_t mass);
  struct Sizes {
    uint64_t infoBytes = 0;  // PageInfoSize
    uint64_t dataBytes = 0;
  };
  Sizes Finish();

 private:
  uint64_t EndOf(uint32_t page) const {
    return page + 1 < records_.size() ? records_[page + 1] : info_.size();
  }
  // The record of a page, to be changed; until the next one is asked for.
  std::span<char> Record(uint32_t page);
  void WriteChanges();

  OutFile info_;
  OutFile data_;
  ChunkedList<uint32_t> records_;  // where each begins in the page info
  std::string changed_;            // records one behind the other, to be written again
  uint64_t changedAt_ = 0;         // where they stand
};

}  // namespace vela::indexer
