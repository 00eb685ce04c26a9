// dictionary.h: `vela_dictionary.vdat`, the indexed words in the order of their numbers.
//
// A text file. Lines end in a line feed; what stands behind the last one is no line.
//
//   word offset count    a base word, number 0 first: where its list lies in the word map (signed,
//                        kNoWordList for none), and how many variant lines follow (may be absent:
//                        0)
//   variant              another spelling of the base word above
//
// The first words are reserved; page_text.h tells what their numbers mean.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela {

inline constexpr char kDictionaryFileName[] = "vela_dictionary.vdat";

// Bytes of a line without its line feed. A longer one ends the dictionary.
inline constexpr size_t kDictionaryLineLimit = 31999;
// Bytes of a variant. A longer one is not stored.
inline constexpr size_t kVariantLimit = 399;

inline constexpr int64_t kNoWordList = -1;  // the offset of a word that is on no page

// What a base word takes of OutputBasewordBufferSize: itself and a NUL.
constexpr int64_t BasewordBufferBytes(size_t length) { return static_cast<int64_t>(length) + 1; }
// What a variant takes of OutputVariantBufferSize: a length byte, itself and a NUL.
constexpr int64_t VariantBufferBytes(size_t length) { return static_cast<int64_t>(length) + 2; }
// What each of NumVariants counts for when OutputVariantBufferSize is 0.
inline constexpr int64_t kMeanVariantBufferBytes = 10;

}  // namespace vela
