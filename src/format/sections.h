// sections.h: `vela_sections.vdat`, the sections of long pages: by what an address leads to them,
// and their headings.
//
// Little-endian: a SectionsHeader, `count` times a SectionRecord in the order of the places where
// the sections begin, and `textBytes` bytes of their texts. It belongs to the page text of `size`
// bytes whose index has this LookupGeneration; otherwise it is not used.
//
// A text is the anchor, UTF-8 as the page has it, not encoded, and behind it the heading, plain
// text that is safe between tags. A record without an anchor says that a page's running text ends,
// or that a part of it begins which no address leads to.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela {

inline constexpr char kSectionsFileName[] = "vela_sections.vdat";

inline constexpr uint64_t kSectionsMagic = 0x0031'6E6F'6974'6365U;  // "ection1" and a zero byte

struct SectionsHeader {
  uint64_t magic = kSectionsMagic;
  uint64_t generation = 0;  // LookupGeneration, 1 to INT32_MAX
  uint64_t pageTextSize = 0;
  uint64_t count = 0;  // of records
  uint64_t textBytes = 0;
};
static_assert(sizeof(SectionsHeader) == 40);

struct SectionRecord {
  uint64_t position = 0;  // in the page text file
  uint32_t page = 0;
  uint32_t text = 0;  // where its text begins
  uint16_t anchorLength = 0;
  uint16_t headingLength = 0;
  uint32_t unused = 0;
};
static_assert(sizeof(SectionRecord) == 24);

}  // namespace vela
