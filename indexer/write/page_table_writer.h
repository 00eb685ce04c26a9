// page_table_writer.h: the two files with a record and a line for every page (format/page_info.h,
// in the small layout, and format/page_data.h).
#pragma once

#include <cstdint>
#include <filesystem>

#include "indexer/collect/page_entry.h"
#include "indexer/words/index_charset.h"
#include "indexer/write/out_file.h"

namespace vela::indexer {

class PageTableWriter {
 public:
  // `charset` must outlive the writer.
  PageTableWriter(const std::filesystem::path& info, const std::filesystem::path& data,
                  const IndexCharset& charset);
  // Returns the position of the page's line in the page data.
  uint64_t AddPage(const PageEntry& page);
  struct Sizes {
    uint64_t infoBytes = 0;  // PageInfoSize
    uint64_t dataBytes = 0;
  };
  Sizes Finish();

 private:
  OutFile info_;
  OutFile data_;
  const IndexCharset& charset_;
};

}  // namespace vela::indexer
