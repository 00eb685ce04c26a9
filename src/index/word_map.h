// word_map.h: the pages on which a dictionary word occurs (`vela_wordmap.vdat`).
//
// The file is little-endian, without a header: word lists at the positions that the dictionary
// names. It is not trusted.
//
//   list:    offset 0  4 bytes  count, signed; 0 or less: no records
//            offset 4           count records
//   record:  offset 0  1 byte   score
//            offset 1  1 byte   proximity: bit 7-b for block b of the page
//            offset 2  3 bytes  page number
//            offset 5  5 bytes  position in the page text file
//
// The indexer's writer of this file is in indexer/.
#pragma once

#include <cstdint>
#include <string_view>

namespace vela {

inline constexpr size_t kWordMapRecordSize = 10;
inline constexpr int64_t kNoWordList = -1;  // the dictionary offset of a word without a list

struct WordMapRecord {
  uint32_t score = 0;  // one byte in the file; a phrase adds those of its words
  uint8_t proximity = 0;
  uint32_t page = 0;      // 24 bits
  uint64_t position = 0;  // 40 bits
};

// The records of one word, used where they lie in the file.
struct WordList {
  std::string_view bytes;  // whole records
  int32_t size() const { return static_cast<int32_t>(bytes.size() / kWordMapRecordSize); }
};

// Record `i` of the list, 0 <= i < size().
WordMapRecord RecordAt(const WordList& list, int32_t i);

enum class WordListStatus { kOk, kSeekFailed, kMissingData };

// Finds the list at `offset` of the word-map file; kSeekFailed when no file has such a position.
// `list` is empty unless kOk is returned, and then when the count is 0 or less.
[[nodiscard]] WordListStatus ReadWordList(std::string_view file, int64_t offset, WordList& list);

}  // namespace vela
