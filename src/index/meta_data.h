// meta_data.h: the values of a page's custom meta fields, as they lie in its record.
//
// In the order of the definitions, without padding:
//   numeric, money   4 bytes, signed, little-endian (money in hundredths); -2147483648: no value
//   drop-down        1 byte, index into the list; 255: no value
//   multiple choice  1 byte n, then n bytes, indexes into the list; n 0: no value
//   any other, text  bytes up to a NUL; empty: no value
// Data that ends early leaves the field and those behind it without a value.
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
