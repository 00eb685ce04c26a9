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
#include <cstring>
#include <string_view>

#include "format/checksum.h"
#include "format/word_map.h"
#include "format/word_pairs.h"
#include "text/ascii.h"

namespace vela {

inline constexpr char kLookupFileName[] = "vela_lookup.vdat";

inline constexpr size_t kLookupBlockSize = 512;
inline constexpr size_t kLookupBlockRoom = kLookupBlockSize - sizeof(uint64_t);

inline constexpr uint64_t kLookupMagic = 0x0031'7075'6B6F'6F6CU;  // "lookup1" and a zero byte
inline constexpr uint64_t kLookupVersion = 2;

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
  LookupTablePlace wordStarts;     // LookupWordStarts, by word number
  LookupTablePlace sortedWords;    // whole blocks of sorted words
  LookupTablePlace wordGuide;      // LookupKey of every kLookupGuideStep-th block of sortedWords
  LookupTablePlace spellingGuide;  // LookupSpelling of every kLookupSpellingStep-th entry
  LookupTablePlace texts;          // LookupText, a page each, and one more for the end of the file
  LookupTablePlace pairs;          // WordPairs, page after page
  uint64_t pagesWithoutBoost = 0;  // records of the page info file whose boost leaves scores
  uint64_t pairedWords = 0;        // pairs of words below this number alone are told of
};
static_assert(sizeof(LookupHeader) <= kLookupBlockRoom);

// Where the lines of some base words, one behind the other, begin in the dictionary. Nothing is
// written for a dictionary where they lie further apart.
inline constexpr size_t kLookupStartsAtOnce = 8;
struct LookupWordStarts {
  uint16_t firstLow = 0;                          // of the first of them: the low ...
  uint16_t firstHigh = 0;                         // ... and the high 16 bits
  uint16_t behind[kLookupStartsAtOnce - 1] = {};  // how far behind it each other one is

  uint32_t At(size_t i) const {
    return (uint32_t{firstHigh} << 16 | firstLow) + (i == 0 ? 0 : behind[i - 1]);
  }
};
static_assert(sizeof(LookupWordStarts) == 18);
constexpr uint64_t LookupWordStartRecords(uint64_t words) {
  return words / kLookupStartsAtOnce + (words % kLookupStartsAtOnce != 0 ? 1 : 0);
}

// The first eight bytes of a text, the first one the highest, filled up with zero bytes: such keys
// are in the order of the bytes of their texts.
using LookupKey = uint64_t;

// The sorted words: base words, and those of their stored variants that differ from them by more
// than ASCII letters in either case. In the order of their texts with ASCII letters in lower case,
// equal ones by the numbers of their base words. Each block is filled with entries of bytes, the
// rest is zero:
//
//   byte     how many bytes the text has in common with the one before in the block
//   byte f   f & kLookupAddedMost: how many bytes of the text are added to these; if that is
//            kLookupAddedMost, so many and those that the next byte says
//            f & kLookupVariantBit: it is a variant
//            f >> kLookupRecentShift: if below kLookupRecentWords, the number of its base word is
//            that of LookupRecentWords::TakeNext
//   bytes    those that are added
//   number   otherwise the number of its base word: seven bits a byte, the lowest first, and the
//            highest bit set in all bytes but the last
inline constexpr size_t kLookupTextLimit = 255;  // of a text; with a longer one there is no file
inline constexpr size_t kLookupAddedMost = 15;
inline constexpr size_t kLookupVariantBit = 16;
inline constexpr int kLookupRecentShift = 5;

// The words of a block that were met last, the last one first: words on as many pages are numbered
// in the order of their texts, so that most come behind one of these.
inline constexpr size_t kLookupRecentWords = 7;
struct LookupRecentWords {
  uint32_t numbers[kLookupRecentWords] = {};

  // The word behind number `i` of them, which takes its place.
  uint32_t TakeNext(size_t i) {
    const uint32_t next = numbers[i] + 1;
    std::copy_backward(numbers, numbers + i, numbers + i + 1);
    return numbers[0] = next;
  }
  void Add(uint32_t number) {
    std::copy_backward(numbers, numbers + kLookupRecentWords - 1, numbers + kLookupRecentWords);
    numbers[0] = number;
  }
  // Of which of them `number` is the word behind; kLookupRecentWords: of none.
  size_t Before(uint32_t number) const {
    size_t i = 0;
    while (i < kLookupRecentWords && numbers[i] + 1 != number) ++i;
    return i;
  }
};

// Of how many blocks of sorted words one has its first text's key in the guide to them.
inline constexpr size_t kLookupGuideStep = 8;

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

// The text of a page in the page text file, by page number. Its records of pairs end where those of
// the next one begin; a text without any has no pair of words that pairs are told of.
struct LookupText {
  uint8_t start[kWordMapPositionWidth] = {};  // of its first token
  uint8_t firstPairs[sizeof(uint32_t)] = {};  // of its records in the table of pairs
};
static_assert(sizeof(LookupText) == 9 && alignof(LookupText) == 1);

inline LookupText MakeLookupText(uint64_t start, uint32_t firstPairs) {
  LookupText text;
  memcpy(text.start, &start, sizeof text.start);
  memcpy(text.firstPairs, &firstPairs, sizeof text.firstPairs);
  return text;
}
inline uint64_t StartOf(const LookupText& text) {
  uint64_t start = 0;
  memcpy(&start, text.start, sizeof text.start);
  return start;
}
inline uint32_t FirstPairsOf(const LookupText& text) {
  uint32_t first = 0;
  memcpy(&first, text.firstPairs, sizeof text.firstPairs);
  return first;
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
