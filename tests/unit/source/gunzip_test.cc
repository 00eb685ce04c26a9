#include "indexer/source/gunzip.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

using namespace std::string_literals;

// printf abc | gzip -n9
const std::string kAbc =
    "\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\x4b\x4c\x4a\x06\x00\xc2\x41\x24\x35\x03\x00\x00\x00"s;

TEST(Gunzip, UnpacksWithinItsLimit) {
  const struct {
    const char* what;
    std::string bytes;
    size_t limit;
    GunzipStatus status;
    const char* out;
  } kCases[] = {
      {"one member", kAbc, 10, GunzipStatus::kOk, "abc"},
      {"exactly the limit", kAbc, 3, GunzipStatus::kOk, "abc"},
      {"more than the limit", kAbc, 2, GunzipStatus::kTooLarge, "ab"},
      {"two members", kAbc + kAbc, 10, GunzipStatus::kOk, "abcabc"},
      {"something behind", kAbc + "\0\0x"s, 10, GunzipStatus::kOk, "abc"},
      {"a zlib stream", "\x78\x9c\x4b\x4c\x4a\x06\x00\x02\x4d\x01\x27"s, 10, GunzipStatus::kOk,
       "abc"},
      {"cut off", kAbc.substr(0, 16), 10, GunzipStatus::kDamaged, "abc"},
      {"damaged", kAbc.substr(0, 11) + "\xff\xff\xff\xff", 10, GunzipStatus::kDamaged, nullptr},
      {"not packed", "abc", 10, GunzipStatus::kDamaged, ""},
      {"nothing", "", 10, GunzipStatus::kDamaged, ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    std::string out = "before";
    EXPECT_EQ(Gunzip(c.bytes, c.limit, out), c.status);
    if (c.out != nullptr) {
      EXPECT_EQ(out, c.out);
    }
    EXPECT_LE(out.size(), c.limit);
  }
}

}  // namespace
}  // namespace vela::indexer
