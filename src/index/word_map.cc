#include "index/word_map.h"

#include "index/byte_cursor.h"
#include "index/seek.h"
#include "text/numbers.h"

namespace vela {

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
