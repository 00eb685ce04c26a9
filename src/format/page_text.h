// page_text.h: `vela_pagetext.vdat`, the text of every page as numbers of dictionary words.
//
// Little-endian, without a header: tokens of DictIDLen bytes, page after page.
//
//   token   offset         size           field
//           0              DictIDLen - 1  number of a dictionary word
//           DictIDLen - 1  1              spelling: 0 the word itself, v from 1 on its v-th variant
//
// The first words of the dictionary are reserved for what is no word, with S =
// DictReservedSuffixes, P = DictReservedPrefixes and N = DictReservedLimit:
//
//   kPageEndWord           a page ends
//   kRunEndWord            a stretch of text ends that no passage or phrase crosses
//   kFirstSignWord to S    a sign without a blank before it: , . )
//   S + 1 to P             a sign without a blank behind it: (
//   P + 1 to N             a sign without a blank on either side: /
#pragma once

#include <cstddef>
#include <cstdint>

#include "format/little_endian.h"

namespace vela {

inline constexpr char kPageTextFileName[] = "vela_pagetext.vdat";

inline constexpr size_t kTokenVariantWidth = 1;
inline constexpr size_t kTokenWidthLimit = 5;  // DictIDLen, at most
inline constexpr uint32_t kTokenVariantLimit = LargestNumber(kTokenVariantWidth);

inline constexpr uint32_t kPageEndWord = 0;
inline constexpr uint32_t kRunEndWord = 1;
inline constexpr uint32_t kFirstSignWord = 2;

// Whether the number ends a page or a stretch of it, and stands for nothing that is written.
constexpr bool EndsRun(uint32_t word) { return word <= kRunEndWord; }

// DictIDLen for so many dictionary words. A number equal to the count must fit as well: the search
// takes it for the mark of files that do not belong together.
constexpr size_t TokenWidth(uint64_t words) { return WidthOf(words) + kTokenVariantWidth; }

}  // namespace vela
