// lookup.h: `vela_lookup.vdat`, by which a request finds what it asks for without reading the other
// files from end to end.
//
// It says nothing that those files do not say. Without it, or where it does not belong to them,
// they are read whole, and the answer is the same. It belongs to the files of a directory when
// `LookupGeneration` of the settings is its generation, and to each file whose size and sample are
// those that it names.
//
// Little-endian, in blocks of kLookupBlockSize bytes: what they hold, filled up with zero bytes,
// and the checksum of that (checksum.h, seeded with the number of the block), so that a damaged
// block is known before anything in it is used. The first block is a LookupHeader. A table follows
// in blocks of its own, as many whole records in each as it holds.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "format/checksum.h"
#include "text/ascii.h"

namespace vela {

inline constexpr char kLookupFileName[] = "vela_lookup.vdat";

inline constexpr size_t kLookupBlockSize = 512;
inline constexpr size_t kLookupBlockRoom = kLookupBlockSize - sizeof(uint64_t);

inline constexpr uint64_t kLookupMagic = 0x0031'7075'6B6F'6F6CU;  // "lookup1" and a zero byte
inline constexpr uint64_t kLookupVersion = 1;

// A file as it was when the tables were made.
struct LookupFileFacts {
  uint64_t size = 0;    // bytes; 0: there was none, or nothing is said about it
  uint64_t sample = 0;  // FileSample
};

struct LookupTablePlace {
  uint64_t firstBlock = 0;
  uint64_t count = 0;  // of records
};

struct LookupHeader {
  uint64_t magic = kLookupMagic;
  uint64_t version = kLookupVersion;
  uint64_t generation = 0;  // LookupGeneration, 1 to INT32_MAX
  LookupFileFacts dictionary;
  LookupFileFacts spelling;
  LookupFileFacts pageInfo;
  LookupFileFacts autocomplete;
  LookupFileFacts pageText;
  uint64_t words = 0;              // base words of the dictionary
  uint64_t baseWordBytes = 0;      // what they take of OutputBasewordBufferSize
  uint64_t variantBytes = 0;       // what the variants take of OutputVariantBufferSize
  uint64_t spellings = 0;          // entries of the spelling file
  uint64_t pages = 0;              // records of the page info file in the small layout ...
  uint64_t pageInfoLength = 0;     // ... which all have this length in bytes; 0: they differ
  uint64_t longestSuggestion = 0;  // bytes of a line of the autocomplete file with its line feed
  uint64_t tokenSize = 0;          // DictIDLen that the page text was read with ...
  uint64_t lastSign = 0;           // ... and DictReservedLimit
  LookupTablePlace wordStarts;     // LookupWordStart, by word number
  LookupTablePlace sortedWords;    // LookupSortedWord, by folded text
  LookupTablePlace wordGuide;      // LookupKey of every kLookupGuideStep-th block of sortedWords
  LookupTablePlace spellingGuide;  // LookupSpelling of every kLookupSpellingStep-th entry
  LookupTablePlace texts;          // LookupText, a page each, and one more for the end of the file
  LookupTablePlace pairs;          // LookupPairs, page after page
  uint64_t pagesWithoutBoost = 0;  // records of the page info file whose boost leaves scores
};
static_assert(sizeof(LookupHeader) <= kLookupBlockRoom);

// Where the line of a base word begins in the dictionary.
using LookupWordStart = uint32_t;

// The first eight bytes of a text, the first one the highest, filled up with zero bytes: such keys
// are in the order of the bytes of their texts.
using LookupKey = uint64_t;

// A base word, or one of its stored variants where ASCII letters in lower case do not make the two
// equal. In the order of their texts with ASCII letters in lower case, equal ones by `word`.
struct LookupSortedWord {
  LookupKey key = 0;   // of the text in lower case
  uint32_t word = 0;   // number of the base word
  uint32_t start = 0;  // where the text begins in the dictionary
};
static_assert(sizeof(LookupSortedWord) == 16);

// How many blocks of sortedWords there are for one key of wordGuide.
inline constexpr size_t kLookupGuideStep = 16;

// An entry of the spelling file.
struct LookupSpelling {
  LookupKey key = 0;   // of its sound key
  uint32_t start = 0;  // where its line begins
  uint32_t unused = 0;
};
static_assert(sizeof(LookupSpelling) == 16);
inline constexpr size_t kLookupSpellingStep = 32;
// The longest line of a spelling file, its line feed included, that the guide is made for.
inline constexpr size_t kLookupSpellingLine = 64;

// The text of a page in the page text file, by page number.
struct LookupText {
  uint64_t start = 0;       // of its first token
  uint32_t firstPairs = 0;  // its records in the table of pairs ...
  uint32_t pairs = 0;       // ... and how many they are
};
static_assert(sizeof(LookupText) == 16);

// Which words stand beside each other in a text, signs between them passed over: for each such pair
// bits are set in one of the records of the page, other pairs may share them. What has no bits set
// is not there.
using LookupPairs = uint64_t;
// How many records a text of so many words has.
constexpr uint64_t LookupPairRecords(uint64_t words) {
  constexpr uint64_t kBitsPerWord = 6;
  return words * kBitsPerWord / 64 + 1;
}
struct LookupPairPlace {
  uint32_t record;  // of those of the page
  LookupPairs bits;
};
constexpr LookupPairPlace LookupPairPlaceOf(uint32_t first, uint32_t second, uint32_t records) {
  uint64_t mixed = (uint64_t{first} << 32 | second) * 0x9E37'79B9'7F4A'7C15U;
  mixed = (mixed ^ mixed >> 32) * 0xD6E8'FEB8'6659'FD93U;
  mixed ^= mixed >> 32;
  return {static_cast<uint32_t>((mixed >> 32) * records >> 32),
          uint64_t{1} << (mixed % 64) | uint64_t{1} << (mixed / 64 % 64)};
}

template <typename Record>
inline constexpr size_t kLookupRecordsPerBlock = kLookupBlockRoom / sizeof(Record);

constexpr LookupKey LookupKeyOf(std::string_view text) {
  LookupKey key = 0;
  for (size_t i = 0; i < sizeof key; ++i) {
    key = key << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
  }
  return key;
}

// The key of the text with ASCII letters in lower case.
constexpr LookupKey FoldedLookupKeyOf(std::string_view text) {
  char folded[sizeof(LookupKey)] = {};
  const size_t length = std::min(text.size(), sizeof folded);
  for (size_t i = 0; i < length; ++i) folded[i] = ToLowerAscii(text[i]);
  return LookupKeyOf({folded, length});
}

// The pieces of a file that tell it from another of its size: the whole of a small one, and of a
// large one kSamplePieces of kSamplePiece bytes from the first to the last.
inline constexpr size_t kWholeSample = size_t{64} << 10;
inline constexpr size_t kSamplePieces = 4;
inline constexpr size_t kSamplePiece = 1024;

// Where a piece of a large file of `size` bytes begins.
constexpr size_t SamplePieceStart(size_t size, size_t piece) {
  return (size - kSamplePiece) / (kSamplePieces - 1) * piece;
}

// The checksum of these pieces.
inline uint64_t FileSample(std::string_view bytes) {
  if (bytes.size() <= kWholeSample) return Checksum(bytes, 0);
  uint64_t sum = bytes.size();
  for (size_t i = 0; i < kSamplePieces; ++i) {
    sum = Checksum(bytes.substr(SamplePieceStart(bytes.size(), i), kSamplePiece), sum);
  }
  return sum;
}

}  // namespace vela
