// word_map.h: the reader of the pages on which a dictionary word occurs (format/word_map.h). The
// file is not trusted.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "format/word_map.h"

namespace vela {

struct WordMapRecord {
  uint32_t score = 0;  // one byte in the file; a phrase adds those of its words
  uint8_t proximity = 0;
  uint32_t page = 0;      // up to kPageNumberLimit
  uint64_t position = 0;  // in the page text, up to kPositionLimit
};

// The records of one word, used where they lie in the file.
struct WordList {
  std::string_view bytes;  // whole records
  int32_t size() const { return static_cast<int32_t>(bytes.size() / kWordMapRecordSize); }
};

// Record `i` of the list, 0 <= i < size().
inline WordMapRecord RecordAt(const WordList& list, int32_t i) {
  static_assert(std::endian::native == std::endian::little, "records are loaded as they lie");
  const char* at = list.bytes.data() + static_cast<size_t>(i) * kWordMapRecordSize;
  // Both numbers in loads of whole words that end with the record.
  uint32_t pageWord = 0;
  uint64_t positionWord = 0;
  static_assert(kWordMapPageOffset + sizeof positionWord == kWordMapRecordSize);
  memcpy(&pageWord, at + kWordMapPageOffset, sizeof pageWord);
  memcpy(&positionWord, at + kWordMapPageOffset, sizeof positionWord);
  return {static_cast<uint8_t>(at[kWordMapScoreOffset]),
          static_cast<uint8_t>(at[kWordMapProximityOffset]), pageWord & kPageNumberLimit,
          positionWord >> (8 * kWordMapPageWidth)};
}

enum class WordListStatus { kOk, kSeekFailed, kMissingData };

// Finds the list at `offset` of the word-map file; kSeekFailed when no file has such a position.
// `list` is empty unless kOk is returned, and then when the count is 0 or less.
[[nodiscard]] WordListStatus ReadWordList(std::string_view file, int64_t offset, WordList& list);

}  // namespace vela
