// page_info.h: the reader of the facts of every page (format/page_info.h). The file is not trusted.
//
// A record that is shorter than its fixed part reads on into what follows it, and as 0 beyond the
// end of the file.
#pragma once

#include <cstdint>
#include <string_view>

#include "index/load_status.h"
#include "index/lookup_file.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/owned_array.h"

namespace vela {

struct PageTable {
  FileImage file;
  std::string_view image;       // the PageInfoSize bytes in use
  bool big = false;             // the layout of the records
  int32_t pageCount = 0;        // NumPages
  size_t categoryBytes = 0;     // bytes of the category set that stand ahead of the meta fields
  size_t recordLength = 0;      // of every record, in bytes; 0: they differ, and `starts` is used
  bool hasBoosts = true;        // false: the boost of every page leaves its scores
  OwnedArray<uint32_t> starts;  // offset of each record; the last one serves all pages behind it
};

// Opens the file and finds the start of every record, by a pass over the file unless `lookup` says
// that it is sound and its records are alike.
[[nodiscard]] LoadStatus LoadPageInfo(PageTable& pages, const IndexDirectory& directory,
                                      const Settings& settings, const LookupFile& lookup);

// The fields of page `page`, 0 <= page < pageCount.
uint64_t PageDataOffset(const PageTable& pages, uint32_t page);
uint32_t PageFileSize(const PageTable& pages, uint32_t page);  // bytes
int32_t PageDateTime(const PageTable& pages, uint32_t page);   // compared as a signed number
uint8_t PageBoost(const PageTable& pages, uint32_t page);
uint8_t PageFileType(const PageTable& pages, uint32_t page);
// The mass of the page's title, which records end with in an index made for Ranking
// (format/word_weight.h).
uint32_t PageTitleMass(const PageTable& pages, uint32_t page);

// Whether byte `index` of the category set has bit `bit` set.
bool PageCategoryBit(const PageTable& pages, uint32_t page, size_t index, int bit);

// The bytes of the record behind its category set: the values of the meta fields. Empty when the
// record ends before.
std::string_view PageMetaData(const PageTable& pages, uint32_t page);

}  // namespace vela
