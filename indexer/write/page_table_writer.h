// page_table_writer.h: vela_pageinfo.vdat and vela_pagedata.vdat, read by src/index/page_info.h and
// page_data.h.
//
//   page info, one record a page, no header:
//   offset  size  field
//   0       2     recordLength
//   2       5     dataOffset, of the page's line in the page data
//   7       4     fileSize, bytes
//   11      4     dateTime, seconds since 1970, 0 for none
//   15      1     boost, tenths; 0 leaves scores as they are
//   16      1     fileType
//   17      n     category set (see category_set.h)
//   17 + n  m     values of the custom meta fields (see meta_values.h)
//
//   page data, one line a page: URL|title|description|image|
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
