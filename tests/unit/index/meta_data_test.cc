#include "index/meta_data.h"

#include <gtest/gtest.h>

#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using namespace std::string_literals;

MetaFieldDef Field(int32_t type) {
  MetaFieldDef field;
  field.type = type;
  return field;
}

TEST(MetaData, Numbers) {
  const struct {
    const char* what;
    std::string bytes;
    bool hasValue;
    int32_t number;
  } cases[] = {
      {"42", "\x2A\0\0\0"s, true, 42},
      {"minus one", "\xFF\xFF\xFF\xFF"s, true, -1},
      {"the largest", "\xFF\xFF\xFF\x7F"s, true, 2147483647},
      {"the most negative is no value", "\0\0\0\x80"s, false, 0},
      {"one above it is one", "\x01\0\0\x80"s, true, -2147483647},
      {"zero is a value", "\0\0\0\0"s, true, 0},
      {"cut", "\x2A\0\0"s, false, 0},
      {"nothing", "", false, 0},
  };
  for (int32_t type : {kMetaNumeric, kMetaMoney}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(c.what);
      ByteCursor cursor{c.bytes};
      const MetaData data = TakeMetaData(cursor, Field(type));
      EXPECT_EQ(data.hasValue, c.hasValue);
      if (c.hasValue) {
        EXPECT_EQ(data.number, c.number);
      }
    }
  }
}

TEST(MetaData, DropDown) {
  const struct {
    const char* what;
    std::string bytes;
    bool hasValue;
    int32_t number;
  } cases[] = {
      {"the first of the list", "\0"s, true, 0},
      {"number 200", "\xC8", true, 200},
      {"number 254", "\xFE", true, 254},
      {"255 is no value", "\xFF", false, 0},
      {"nothing", "", false, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ByteCursor cursor{c.bytes};
    const MetaData data = TakeMetaData(cursor, Field(kMetaDropDown));
    EXPECT_EQ(data.hasValue, c.hasValue);
    if (c.hasValue) {
      EXPECT_EQ(data.number, c.number);
    }
  }
}

TEST(MetaData, MultipleChoice) {
  const struct {
    const char* what;
    std::string bytes;
    bool hasValue;
    std::string indexes;
  } cases[] = {
      {"two of the list", "\x02\x01\x05"s, true, "\x01\x05"},
      {"none", "\0"s, false, ""},
      {"fewer than counted", "\x03\x01\x05"s, false, ""},
      {"nothing", "", false, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ByteCursor cursor{c.bytes};
    const MetaData data = TakeMetaData(cursor, Field(kMetaMultiple));
    EXPECT_EQ(data.hasValue, c.hasValue);
    if (c.hasValue) {
      EXPECT_EQ(data.indexes, c.indexes);
    }
  }
}

TEST(MetaData, Text) {
  const struct {
    const char* what;
    std::string bytes;
    bool hasValue;
    std::string text;
  } cases[] = {
      {"up to the NUL", "oak\0x"s, true, "oak"},
      {"empty is no value", "\0"s, false, ""},
      {"without its NUL", "oak", false, ""},
      {"nothing", "", false, ""},
  };
  for (int32_t type : {1, 5, -1, 99}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(c.what);
      ByteCursor cursor{c.bytes};
      const MetaData data = TakeMetaData(cursor, Field(type));
      EXPECT_EQ(data.hasValue, c.hasValue);
      if (c.hasValue) {
        EXPECT_EQ(data.text, c.text);
      }
    }
  }
}

TEST(MetaData, FieldsFollowOneAnother) {
  const std::string bytes = "\x07\0\0\0"s + "\x01" + "\x02\x03\x04" + "oak\0"s + "\x10\x27\0\0"s;
  ByteCursor cursor{bytes};
  EXPECT_EQ(TakeMetaData(cursor, Field(kMetaNumeric)).number, 7);
  EXPECT_EQ(TakeMetaData(cursor, Field(kMetaDropDown)).number, 1);
  EXPECT_EQ(TakeMetaData(cursor, Field(kMetaMultiple)).indexes, "\x03\x04");
  EXPECT_EQ(TakeMetaData(cursor, Field(1)).text, "oak");
  EXPECT_EQ(TakeMetaData(cursor, Field(kMetaMoney)).number, 10000);
  EXPECT_TRUE(cursor.rest.empty());
  EXPECT_FALSE(cursor.bad);
}

TEST(MetaData, FieldsWithoutAValueTakeTheirBytesToo) {
  const std::string bytes = "\0\0\0\x80"s + "\xFF" + "\0"s + "\0"s + "\x05\0\0\0"s;
  ByteCursor cursor{bytes};
  EXPECT_FALSE(TakeMetaData(cursor, Field(kMetaNumeric)).hasValue);
  EXPECT_FALSE(TakeMetaData(cursor, Field(kMetaDropDown)).hasValue);
  EXPECT_FALSE(TakeMetaData(cursor, Field(kMetaMultiple)).hasValue);
  EXPECT_FALSE(TakeMetaData(cursor, Field(1)).hasValue);
  EXPECT_EQ(TakeMetaData(cursor, Field(kMetaNumeric)).number, 5);
}

TEST(MetaData, DataThatEndsEarlyLeavesTheRestWithoutValues) {
  const std::string bytes = "\x07\0\0"s;  // three of four bytes
  ByteCursor cursor{bytes};
  EXPECT_FALSE(TakeMetaData(cursor, Field(kMetaNumeric)).hasValue);
  EXPECT_FALSE(TakeMetaData(cursor, Field(kMetaDropDown)).hasValue);
  EXPECT_FALSE(TakeMetaData(cursor, Field(1)).hasValue);
}

}  // namespace
}  // namespace vela
