// compound_file.h: the streams of a compound file, in which older office programs keep a document.
// Little-endian, and not trusted: every place is checked against the size of the file.
//
//   offset  size  header
//   0       8     D0 CF 11 E0 A1 B1 1A E1
//   30      2     n: a sector has 2^n bytes
//   32      2     n: a small sector has 2^n bytes
//   48      4     first sector of the directory
//   56      4     a stream of fewer bytes lies in small sectors
//   60      4     first sector of the table of small sectors
//   68      4     first sector with more sectors of the table
//   76      436   the first 109 sectors of the table
//
// Sector s begins at (s + 1) * its size. The table has four bytes for each: the sector that goes
// on behind it; from FFFFFFFA on there is none. Small sectors are parts of one stream, that of the
// directory's root, and have a table of their own. An entry of the directory has 128 bytes:
//
//   0       64    name in UTF-16, with a terminator
//   64      2     bytes of the name, terminator included
//   66      1     1: a folder, 2: a stream, 5: the root, which is the first entry
//   68      4+4   the entries before and behind it in the tree of its folder
//   76      4     of a folder: the entry on top of its tree
//   116     4     first sector
//   120     4     size in bytes
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/extract/reading_budget.h"
#include "indexer/report/reason.h"

namespace vela::indexer {

// The little-endian number of `width` bytes (up to 4) at `offset`; bytes beyond the end count as 0.
uint32_t NumberAt(std::string_view bytes, size_t offset, size_t width);

class CompoundFile {
 public:
  // Reads the tables of `bytes`, which must outlive this. kNone; kDamaged: it is no such file; or
  // how `budget` ended the reading.
  [[nodiscard]] Reason Open(std::string_view bytes, ReadingBudget& budget);

  // The bytes of the stream of that name (ASCII), "NAME" in the root or "FOLDER/NAME" in a folder
  // of the root, as far as they are there. Empty when there is none, or when `budget` does not
  // allow them, which its status tells.
  std::string Stream(std::string_view name, ReadingBudget& budget) const;

 private:
  struct Extent {
    uint32_t first = 0;  // sector
    uint32_t bytes = 0;
  };
  struct Entry {
    std::string name;  // in UTF-16
    Extent extent;
  };

  std::string_view Sector(uint32_t number) const;
  // At most `bytes` of the sectors from that one on.
  std::string Chain(Extent extent, ReadingBudget& budget) const;
  std::string SmallChain(Extent extent, ReadingBudget& budget) const;

  std::string_view bytes_;
  size_t sectorBytes_ = 0;
  size_t smallSectorBytes_ = 0;
  uint32_t smallStreams_ = 0;  // of fewer bytes
  std::vector<uint32_t> next_;
  std::string smallNext_;
  std::string smallSectors_;
  std::vector<Entry> entries_;
};

}  // namespace vela::indexer
