// page_sections.h: the reader of the sections of long pages (format/sections.h). The file is not
// trusted: what does not belong to the index, reaches beyond the file or is not as it was written
// is as if it were not there.
#pragma once

#include <cstdint>
#include <string_view>

#include "format/sections.h"
#include "index/byte_cursor.h"
#include "settings/file_pieces.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "text/owned_array.h"

namespace vela {

// Both valid until the next one is looked for.
struct PageSection {
  std::string_view anchor;   // of an address, not encoded; empty: no address leads there
  std::string_view heading;  // as stored; anything may stand in it
};

// Goes through the sections of one block.
class SectionBlock {
 public:
  // `bytes` and `texts`, which has room for kSectionTextRoom bytes, must outlive it.
  SectionBlock(std::string_view bytes, uint64_t position, char* texts)
      : cursor_{.rest = bytes}, position_(position), texts_(texts) {}

  // The next section that begins at `last` or before; false when there is none, or none that can
  // be read.
  bool Next(uint64_t last, PageSection& section);

  // Where the section begins that was read last; behind a false one that was not.
  uint64_t position() const { return position_; }
  // Whether a false one was of bytes that are no section.
  bool isBad() const { return cursor_.bad; }

 private:
  uint64_t ReadNumber();
  bool ReadText(size_t length);

  ByteCursor cursor_;
  uint64_t position_;
  char* texts_;
  size_t used_ = 0;  // bytes of the texts
};

class SectionsFile {
 public:
  // Opens the file of the directory; it stays closed when it does not belong to a page text of that
  // size or to the settings.
  void Open(const IndexDirectory& directory, const Settings& settings, uint64_t pageTextSize);
  // The same over bytes in memory, which must outlive the reader.
  void Open(std::string_view bytes, int32_t generation, uint64_t pageTextSize);
  void Close();

  // The section in which the place of the page text lies; false when it lies in none.
  [[nodiscard]] bool Find(uint64_t position, PageSection& section) const;

 private:
  // A block, and where what it holds ends.
  struct Block {
    SectionGuide guide;
    uint64_t end = 0;    // in the page text; UINT64_MAX for the last one
    uint64_t bytes = 0;  // among those of all blocks
  };

  [[nodiscard]] bool Use(int32_t generation, uint64_t pageTextSize);
  bool FindBlock(uint64_t position, Block& block) const;

  FilePieces file_;
  SectionsHeader header_;  // of no blocks while closed
  // The bytes of the block in which was looked last, and the texts of its sections.
  mutable OwnedArray<char> room_;
};

}  // namespace vela
