// word_pairs.h: which words stand beside each other in a text, in the table of pairs of the lookup
// file (lookup.h).
//
// The pairs of a text are kept as a ribbon filter: a row of slots of kWordPairBits bits, of which a
// pair picks some of the 32 from a slot on. Those picked by a pair that is in the text add up, bit
// by bit without carry, to the value of the pair. Those of another pair do so by chance, one time
// in 32. A record holds 32 slots: bit i of its column c is bit c of slot i.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela {

inline constexpr size_t kWordPairBits = 5;
inline constexpr uint32_t kWordPairSlots = 32;  // of a record

struct WordPairs {
  uint32_t columns[kWordPairBits] = {};
};
static_assert(sizeof(WordPairs) == 20);

// What a pair says of the slots of a text.
struct WordPairMark {
  uint32_t slot = 0;   // the first that it picks
  uint32_t mask = 1;   // which of the 32 from there on it picks: bit 0 is the first
  uint32_t value = 0;  // to which they add up
};

// The mark of two words, signs between them passed over, in a text of so many records (1 to 2^27):
// all slots that it picks are there.
constexpr WordPairMark WordPairMarkOf(uint32_t first, uint32_t second, uint32_t records) {
  uint64_t mixed = (uint64_t{first} << 32 | second) * 0x9E37'79B9'7F4A'7C15U;
  mixed = (mixed ^ mixed >> 32) * 0xD6E8'FEB8'6659'FD93U;
  mixed ^= mixed >> 32;
  const uint64_t starts = uint64_t{records} * kWordPairSlots - (kWordPairSlots - 1);
  // Two pairs that cannot both be told of in so many records can be in another number of them.
  const uint64_t further = (mixed ^ records) * 0xA24B'AED4'963E'E407U;
  return {.slot = static_cast<uint32_t>((mixed >> 32) * starts >> 32),
          .mask = static_cast<uint32_t>(further >> 32) | 1,
          .value = static_cast<uint32_t>(mixed) & ((1U << kWordPairBits) - 1)};
}

// Whether what the mark picks of the record that holds its slot, and of the one behind it, adds up
// to its value. Of the second nothing is picked when the slot is the first of its record.
constexpr bool AddsUp(const WordPairMark& mark, const WordPairs& record, const WordPairs& next) {
  const uint32_t shift = mark.slot % kWordPairSlots;
  for (size_t c = 0; c < kWordPairBits; ++c) {
    const uint64_t both = uint64_t{next.columns[c]} << 32 | record.columns[c];
    const auto picked = static_cast<uint32_t>(both >> shift) & mark.mask;
    if (static_cast<uint32_t>(__builtin_parity(picked)) != (mark.value >> c & 1)) return false;
  }
  return true;
}

}  // namespace vela
