// page_entry.h: what the page table keeps of one page.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "format/page_info.h"
#include "indexer/source/source_item.h"

namespace vela::indexer {

struct PageEntry {
  std::string address;      // as StoredAddress made it, at most kAddressLimit bytes
  std::string title;        // as StoredText made it, at most kPageTitleLimit bytes
  std::string description;  // the same, kPageDescriptionLimit
  std::string image;        // an address like `address`, or empty
  uint64_t fileSize = 0;
  int64_t time = kNoPageDate;  // seconds since 1970
  uint8_t boost = 0;
  FileType fileType = FileType::kHtml;
  std::optional<uint32_t> similarTo;  // a page before that says nearly the same; for the report
  std::string language;               // "en"; empty: not known. Of the report, not of the files
  std::string categories;             // see category_set.h
  std::string metaValues;             // see meta_values.h
  bool hasTitleMass = false;          // the mass of its title is to be known (format/word_weight.h)
};

}  // namespace vela::indexer
