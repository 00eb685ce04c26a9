#include "index/meta_data.h"

#include "format/meta_fields.h"
#include "text/numbers.h"

namespace vela {

MetaData TakeMetaData(ByteCursor& cursor, const MetaFieldDef& field) {
  MetaData data;
  switch (field.type) {
    case kMetaNumeric:
    case kMetaMoney:
      data.number = WrapToInt32(WrapToUint32(TakeLittleEndian(cursor, kMetaNumberWidth)));
      data.hasValue = !cursor.bad && data.number != kNoMetaNumber;
      break;
    case kMetaDropDown:
      data.number = static_cast<int32_t>(TakeLittleEndian(cursor, kMetaChoiceWidth));
      data.hasValue = !cursor.bad && data.number != kNoMetaChoice;
      break;
    case kMetaMultiple:
      data.indexes = Take(cursor, static_cast<size_t>(TakeLittleEndian(cursor, kMetaChoiceWidth)));
      data.hasValue = !cursor.bad && !data.indexes.empty();
      break;
    default: {
      const size_t length = cursor.rest.find(kMetaTextEnd);
      data.text = Take(cursor, length == std::string_view::npos ? SIZE_MAX : length);
      Take(cursor, 1);
      data.hasValue = !cursor.bad && !data.text.empty();
      break;
    }
  }
  return data;
}

}  // namespace vela
