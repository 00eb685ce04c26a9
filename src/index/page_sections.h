// page_sections.h: the reader of the sections of long pages (format/sections.h). The file is not
// trusted: what does not belong to the index or reaches beyond the file is as if it were not there.
#pragma once

#include <cstdint>
#include <string_view>

#include "format/sections.h"
#include "settings/file_pieces.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/owned_array.h"

namespace vela {

// Both valid until the next one is looked for.
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
  [[nodiscard]] bool Use(int32_t generation, uint64_t pageTextSize);
  bool FindRecord(uint64_t position, SectionRecord& record) const;

  FilePieces file_;
  uint64_t count_ = 0;      // of records; 0 while closed
  uint64_t textStart_ = 0;  // in the file
  uint64_t textBytes_ = 0;
  uint64_t pageTextSize_ = 0;
  mutable OwnedArray<char> text_;  // of the section that was found last
};

}  // namespace vela
