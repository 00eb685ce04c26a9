// sections.h: `vela_sections.vdat`, the sections of long pages: by what an address leads to them,
// and their headings.
//
// Little-endian: a SectionsHeader, `blockBytes` bytes of blocks, and the guide: a SectionGuide for
// each of the `count` blocks. It belongs to the page text of `pageTextSize` bytes whose index has
// this LookupGeneration; otherwise it is not used.
//
// A block has up to kSectionsPerBlock sections in the order of the places where they begin. Of
// each, with numbers of seven bits a byte, the lowest first, and the highest bit set in all bytes
// but the last:
//
//   number   how many bytes of the page text behind the one before it begins, the first behind the
//            block's place
//   number   bytes of its anchor; 0: a page's running text ends, or a part of it begins which no
//            address leads to, and nothing follows
//   number   bytes of its heading
//   steps    which give that many bytes of the anchor and the heading: UTF-8 as the page has it,
//            not encoded, and plain text that is safe between tags
//
// The first byte b of a step says which it is:
//
//   b < 128  the b + 1 bytes behind it are the next bytes of the text
//   others   with the byte behind it: the next bytes are those that stand ((b & 3) << 8 | byte) + 1
//            before in the texts of the block; there are (b >> 2 & 31) + kSectionCopyLeast of them
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "format/checksum.h"

namespace vela {

inline constexpr char kSectionsFileName[] = "vela_sections.vdat";

inline constexpr uint64_t kSectionsMagic = 0x0032'6E6F'6974'6365U;  // "ection2" and a zero byte

struct SectionsHeader {
  uint64_t magic = kSectionsMagic;
  uint64_t generation = 0;  // LookupGeneration, 1 to INT32_MAX
  uint64_t pageTextSize = 0;
  uint64_t blockBytes = 0;
  uint64_t count = 0;  // of blocks
};
static_assert(sizeof(SectionsHeader) == 40);

// Of a block. Those of the next block say where this one ends.
struct SectionGuide {
  uint64_t position = 0;  // in the page text file: where its first section begins
  uint32_t start = 0;     // of its bytes among those of all blocks
  uint32_t sum = 0;       // SectionBlockSum
};
static_assert(sizeof(SectionGuide) == 16);

inline constexpr size_t kSectionsPerBlock = 32;
// Bytes of the anchors and headings of a block. A longer one is of no use in an address.
inline constexpr size_t kSectionTextRoom = 8192;
// Bytes of a block, at most: each number takes three bytes, the first of a section ten.
inline constexpr size_t kSectionBlockRoom =
    kSectionTextRoom + kSectionTextRoom / 128 + kSectionsPerBlock * 17;

inline constexpr size_t kSectionLiteralMost = 128;
inline constexpr size_t kSectionCopyLeast = 3;
inline constexpr size_t kSectionCopyMost = kSectionCopyLeast + 31;
inline constexpr size_t kSectionCopyReach = 1024;

// The checksum of a block that begins at `position` and reaches to `end`, the position of the next
// block, or UINT64_MAX.
inline uint32_t SectionBlockSum(std::string_view bytes, uint64_t position, uint64_t end) {
  return static_cast<uint32_t>(Checksum(bytes, position ^ end << 32 ^ end >> 32));
}

}  // namespace vela
