// page_data.h: the reader of the texts of a page (format/page_data.h), found through the page's
// record (page_info.h). Read only for the pages that are shown.
#pragma once

#include <cstdint>
#include <string_view>

namespace vela {

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
