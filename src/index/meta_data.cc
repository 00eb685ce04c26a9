#include "index/meta_data.h"

#include "text/numbers.h"

namespace vela {

namespace {

constexpr int32_t kNoNumber = INT32_MIN;
constexpr int32_t kNoIndex = 255;

}  // namespace

MetaData TakeMetaData(ByteCursor& cursor, const MetaFieldDef& field) {
  MetaData data;
  switch (field.type) {
    case kMetaNumeric:
    case kMetaMoney:
      data.number = WrapToInt32(WrapToUint32(TakeLittleEndian(cursor, 4)));
      data.hasValue = !cursor.bad && data.number != kNoNumber;
      break;
    case kMetaDropDown:
      data.number = static_cast<int32_t>(TakeLittleEndian(cursor, 1));
      data.hasValue = !cursor.bad && data.number != kNoIndex;
      break;
    case kMetaMultiple:
      data.indexes = Take(cursor, static_cast<size_t>(TakeLittleEndian(cursor, 1)));
      data.hasValue = !cursor.bad && !data.indexes.empty();
      break;
    default: {
      const size_t length = cursor.rest.find('\0');
      data.text = Take(cursor, length == std::string_view::npos ? SIZE_MAX : length);
      Take(cursor, 1);
      data.hasValue = !cursor.bad && !data.text.empty();
      break;
    }
  }
  return data;
}

}  // namespace vela
