#include "index/word_map.h"

#include <bit>
#include <cstring>

#include "index/byte_cursor.h"
#include "index/seek.h"
#include "text/numbers.h"

namespace vela {

static_assert(std::endian::native == std::endian::little, "records are loaded as they lie");

WordMapRecord RecordAt(const WordList& list, int32_t i) {
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

WordListStatus ReadWordList(std::string_view file, int64_t offset, WordList& list) {
  list = {};
  if (!CanSeekTo(static_cast<uint64_t>(offset))) return WordListStatus::kSeekFailed;
  ByteCursor cursor;
  if (static_cast<uint64_t>(offset) < file.size()) {
    cursor.rest = file.substr(static_cast<size_t>(offset));
  }
  const int32_t count = WrapToInt32(WrapToUint32(TakeLittleEndian(cursor, kWordListCountWidth)));
  if (cursor.bad) return WordListStatus::kMissingData;
  if (count <= 0) return WordListStatus::kOk;
  const std::string_view records = Take(cursor, static_cast<size_t>(count) * kWordMapRecordSize);
  if (cursor.bad) return WordListStatus::kMissingData;
  list.bytes = records;
  return WordListStatus::kOk;
}

}  // namespace vela
