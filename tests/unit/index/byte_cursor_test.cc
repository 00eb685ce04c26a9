#include "index/byte_cursor.h"

#include <gtest/gtest.h>

#include <string>

namespace vela {
namespace {

using namespace std::string_literals;

TEST(ReadLittleEndian, Table) {
  const std::string bytes = "\x01\x02\x00\xFF\x80\x10\x20\x30\x40"s;
  const struct {
    const char* what;
    size_t offset;
    size_t width;
    uint64_t expected;
  } cases[] = {
      {"one byte", 3, 1, 0xFF},
      {"two bytes, the low one first", 0, 2, 0x0201},
      {"three bytes", 0, 3, 0x000201},
      {"four bytes with the sign bit", 1, 4, 0x80FF0002},
      {"five bytes", 4, 5, 0x4030201080},
      {"eight bytes", 1, 8, 0x40302010'80FF0002},
      {"the last bytes are missing", 7, 4, 0x4030},
      {"wholly behind the end", 9, 4, 0},
      {"far behind the end", 1000, 8, 0},
      {"no width", 0, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(ReadLittleEndian(bytes, c.offset, c.width), c.expected);
  }
}

TEST(ByteCursor, TakesInOrder) {
  const std::string bytes = "\x05\x00\x07yz"s;
  ByteCursor cursor{bytes};
  EXPECT_EQ(TakeLittleEndian(cursor, 2), 5u);
  EXPECT_EQ(TakeLittleEndian(cursor, 1), 7u);
  EXPECT_EQ(Take(cursor, 2), "yz");
  EXPECT_FALSE(cursor.bad);
  EXPECT_EQ(Take(cursor, 0), "");
  EXPECT_FALSE(cursor.bad);
}

TEST(ByteCursor, FirstReadThatDoesNotFitEndsAllReading) {
  const std::string bytes = "\x05\x06\x07"s;
  ByteCursor cursor{bytes};
  EXPECT_EQ(Take(cursor, 4), "");
  EXPECT_TRUE(cursor.bad);
  EXPECT_EQ(TakeLittleEndian(cursor, 1), 0u);
  EXPECT_EQ(Take(cursor, 0), "");
  EXPECT_TRUE(cursor.bad);
}

TEST(ByteCursor, HugeCountIsRefused) {
  const std::string bytes = "abc";
  ByteCursor cursor{bytes};
  EXPECT_EQ(Take(cursor, SIZE_MAX), "");
  EXPECT_TRUE(cursor.bad);
}

}  // namespace
}  // namespace vela
