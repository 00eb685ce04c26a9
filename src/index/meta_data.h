// meta_data.h: the reader of the values of a page's custom meta fields (format/meta_fields.h).
#pragma once

#include <cstdint>
#include <string_view>

#include "index/byte_cursor.h"
#include "settings/settings.h"

namespace vela {

// One field's value; which member counts depends on the field's kind.
struct MetaData {
  bool hasValue = false;
  int32_t number = 0;        // numeric, money, drop-down
  std::string_view indexes;  // multiple choice, one byte each
  std::string_view text;
};

// Takes the value of `field` off the cursor.
MetaData TakeMetaData(ByteCursor& cursor, const MetaFieldDef& field);

}  // namespace vela
