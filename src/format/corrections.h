// corrections.h: `vela_corrections.vdat`, the words that a misspelled one may be meant as: those of
// letters alone that stand on the most pages, in lower case, as pages write them.
//
// Little-endian: a CorrectionHeader and four tables with an entry for each word. Words of as many
// letters stand together, shorter ones first, so that a search goes through the tables of few
// groups; those on more pages come first in their group.
//
//   letter sets   4 bytes     which letters the word has (LetterSetOf in text/slips.h)
//   pages         4 bytes     on how many pages it stands
//   starts        4 bytes     where it begins among the texts; one entry more, for their end
//   texts         textBytes   the words, one behind the other
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "text/slips.h"

namespace vela {

inline constexpr char kCorrectionsFileName[] = "vela_corrections.vdat";

inline constexpr uint64_t kCorrectionsMagic = 0x0074'6365'7272'6F63U;  // "correct" and a zero byte

// So many words at most, so that what a request goes through is bounded.
inline constexpr size_t kCorrectionWordLimit = 65536;
// Shorter words are one slip from too many others.
inline constexpr size_t kCorrectionLettersLeast = 3;

struct CorrectionHeader {
  uint64_t magic = kCorrectionsMagic;
  uint32_t words = 0;
  uint32_t textBytes = 0;
  // The first word of so many letters or more; the last entry is `words`.
  std::array<uint32_t, kWordLettersLimit + 2> groups = {};
};
static_assert(sizeof(CorrectionHeader) == 16 + 4 * (kWordLettersLimit + 2));

inline constexpr size_t kCorrectionLetterSetWidth = 4;
inline constexpr size_t kCorrectionPagesWidth = 4;
inline constexpr size_t kCorrectionStartWidth = 4;

}  // namespace vela
