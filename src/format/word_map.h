// word_map.h: `vela_wordmap.vdat`, the pages on which each dictionary word occurs.
//
// Little-endian, without a header: lists at the positions that the dictionary names.
//
//   list     offset  size  field
//            0       4     count of the records, signed; 0 or less: none
//            4       10 n  the records, by page
//
//   record   offset  size  field
//            0       1     score of the word on the page, before the page's boost
//            1       1     proximity: bit 7 - b for block b of the page's text
//            2       3     page number
//            5       5     where the word first stands: byte position in the page text
#pragma once

#include <cstddef>
#include <cstdint>

#include "format/little_endian.h"

namespace vela {

inline constexpr char kWordMapFileName[] = "vela_wordmap.vdat";

inline constexpr size_t kWordListCountWidth = 4;

inline constexpr size_t kWordMapScoreOffset = 0;
inline constexpr size_t kWordMapScoreWidth = 1;
inline constexpr size_t kWordMapProximityOffset = kWordMapScoreOffset + kWordMapScoreWidth;
inline constexpr size_t kWordMapProximityWidth = 1;
inline constexpr size_t kWordMapPageOffset = kWordMapProximityOffset + kWordMapProximityWidth;
inline constexpr size_t kWordMapPageWidth = 3;
inline constexpr size_t kWordMapPositionOffset = kWordMapPageOffset + kWordMapPageWidth;
inline constexpr size_t kWordMapPositionWidth = 5;
inline constexpr size_t kWordMapRecordSize = kWordMapPositionOffset + kWordMapPositionWidth;
static_assert(kWordMapRecordSize == 10);

inline constexpr uint8_t kWordMapScoreLimit = LargestNumber(kWordMapScoreWidth);
inline constexpr uint32_t kPageNumberLimit = LargestNumber(kWordMapPageWidth);    // the largest
inline constexpr uint64_t kPositionLimit = LargestNumber(kWordMapPositionWidth);  // the largest

// A page's running text is taken in blocks of equal size, of kProximityBlockWords words at least.
inline constexpr uint32_t kProximityBlocks = 8 * kWordMapProximityWidth;
inline constexpr uint32_t kProximityBlockWords = 32;

// The words of a block of a page of so many words.
constexpr uint32_t ProximityBlockWords(uint32_t pageWords) {
  const uint32_t share = pageWords / kProximityBlocks + (pageWords % kProximityBlocks != 0 ? 1 : 0);
  return share < kProximityBlockWords ? kProximityBlockWords : share;
}
// The bit of block `block`, 0 <= block < kProximityBlocks.
constexpr uint8_t ProximityBit(uint32_t block) { return static_cast<uint8_t>(0x80U >> block); }

}  // namespace vela
