// page_sections.h: the reader of the sections of long pages (format/sections.h). The file is not
// trusted: what does not belong to the index or reaches beyond the file is as if it were not there.
#pragma once

#include <cstdint>
#include <string_view>

#include "format/sections.h"
#include "settings/index_directory.h"
#include "settings/settings.h"

namespace vela {

// Both valid while the file is open.
struct PageSection {
  std::string_view anchor;   // of an address, not encoded; anything may stand in it
  std::string_view heading;  // as stored; anything may stand in it
};

class SectionsFile {
 public:
  // Opens the file of the directory; it stays closed when it does not belong to a page text of that
  // size or to the settings.
  void Open(const IndexDirectory& directory, const Settings& settings, uint64_t pageTextSize);
  // The same over bytes in memory, which must outlive the reader.
  void Open(std::string_view bytes, int32_t generation, uint64_t pageTextSize);
  void Close();

  // The section of the page in which the place of the page text lies; false when it lies in none.
  [[nodiscard]] bool Find(uint32_t page, uint64_t position, PageSection& section) const;

 private:
  [[nodiscard]] bool Use(std::string_view bytes, int32_t generation, uint64_t pageTextSize);
  SectionRecord RecordAt(uint64_t i) const;

  FileImage file_;
  std::string_view records_;  // empty while closed
  std::string_view texts_;
  uint64_t count_ = 0;
};

}  // namespace vela
