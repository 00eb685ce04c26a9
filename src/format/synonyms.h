// synonyms.h: `vela_synonyms.vdat`, the other words by which a term of a query finds pages: those
// that the site's owner named, other ways to write the same compound, and compounds of a word.
//
// Little-endian: a SynonymHeader and what it counts, in this order.
//
//   keys          8 bytes each, and one more for the end of the last
//     0  4  start         of the key among the texts; keys follow one another there
//     4  4  alternatives  the first of its alternatives; those of the next key follow
//   alternatives  12 bytes each, and one more for the end of the last
//     0  4  start         of the word among the texts, behind all keys, one behind the other
//     4  4  records       the first of its records; those of the next alternative follow
//     8  4  weight        of 100: what its pages' scores are multiplied by
//   records       as in word_map.h: the pages that have the words of an alternative of several side
//                 by side, by page, and where
//   texts         textBytes
//
// A key is a word as the dictionary has it, or several with a blank between them, which stand side
// by side in the query. Keys are in the order of their bytes. An alternative is written as pages
// write it, in lower case; one of a single word has no records and is looked up.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela {

inline constexpr char kSynonymsFileName[] = "vela_synonyms.vdat";

inline constexpr uint64_t kSynonymsMagic = 0x006D'796E'6F6E'7973U;  // "synonym" and a zero byte

struct SynonymHeader {
  uint64_t magic = kSynonymsMagic;
  uint32_t keys = 0;  // Synonyms
  uint32_t alternatives = 0;
  uint32_t records = 0;
  uint32_t textBytes = 0;
};
static_assert(sizeof(SynonymHeader) == 24);

inline constexpr size_t kSynonymKeySize = 8;
inline constexpr size_t kSynonymAlternativeSize = 12;
inline constexpr size_t kSynonymNumberWidth = 4;  // of every field of the two

inline constexpr size_t kSynonymWordsLimit = 4;          // of a key or an alternative
inline constexpr size_t kSynonymAlternativesLimit = 64;  // of a key
inline constexpr uint32_t kWholeSynonymWeight = 100;

}  // namespace vela
