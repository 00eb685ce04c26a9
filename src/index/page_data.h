// page_data.h: the texts of every page (`vela_pagedata.vdat`): a line of at most 7260 bytes a page,
//
//   address|title|description|image address|
//
// found through the page's record (page_info.h). Read only for the pages that are shown, and put on
// the page as stored: the indexer stores them safe for HTML.
#pragma once

#include <cstdint>
#include <string_view>

namespace vela {

inline constexpr char kPageDataFileName[] = "vela_pagedata.vdat";
inline constexpr size_t kPageDataLineLimit = 7260;
inline constexpr size_t kUrlLimit = 2083;  // bytes kept of an address

// Pieces of the file, valid while it is open. Any may be empty.
struct PageTexts {
  std::string_view url;
  std::string_view title;
  std::string_view description;
  std::string_view image;
};

// The bytes of the line at `offset`, its line feed included; 0 beyond the end of the file.
uint64_t PageDataLineLength(std::string_view file, uint64_t offset);

// Splits the line at `offset`. False, and all texts empty, when it lacks one of the four "|".
[[nodiscard]] bool ReadPageData(std::string_view file, uint64_t offset, PageTexts& texts);

// Only the address; false, and empty, when it is empty or not ended by "|".
[[nodiscard]] bool ReadPageUrl(std::string_view file, uint64_t offset, std::string_view& url);

}  // namespace vela
