// How blocks and anchors lie in the state: packed, and read back only when they are whole.
#include <gtest/gtest.h>

#include <string>

#include "indexer/state/anchor_bytes.h"
#include "indexer/state/packed_bytes.h"

namespace vela::indexer {
namespace {

TEST(PackedBytes, ComeBack) {
  for (const size_t size : {size_t{0}, size_t{1}, size_t{1000}, size_t{1000000}}) {
    std::string bytes;
    for (size_t i = 0; i < size; ++i) bytes += static_cast<char>(i * i / 7);
    const std::string packed = Packed(bytes);
    std::string read = "x";
    EXPECT_TRUE(Unpack(packed, size, read));
    EXPECT_EQ(read, bytes);
    if (size == 0) continue;
    EXPECT_FALSE(Unpack(packed, size - 1, read));
    EXPECT_EQ(read, "");
  }
}

TEST(PackedBytes, DamagedOnesAreRefused) {
  const std::string packed = Packed(std::string(1000, 'x') + "end");
  std::string read;
  for (size_t size = 0; size < packed.size(); ++size) {
    EXPECT_FALSE(Unpack(packed.substr(0, size), 1 << 20, read)) << size;
  }
  EXPECT_FALSE(Unpack("no such thing", 1 << 20, read));
}

TEST(AnchorBytes, ComeBack) {
  PageAnchors anchors;
  anchors.places = {"one", "", "two:3"};
  anchors.links = {{"https://x.example/a", "f", "a text"}, {"", "", ""}};
  const std::string bytes = AnchorBytes(anchors);
  EXPECT_EQ(bytes, "1:33:one0:5:two:319:https://x.example/a1:f6:a text0:0:0:");
  PageAnchors read;
  ASSERT_TRUE(ReadAnchors(bytes, read));
  EXPECT_EQ(read.places, anchors.places);
  ASSERT_EQ(read.links.size(), 2u);
  EXPECT_EQ(read.links[0].address, "https://x.example/a");
  EXPECT_EQ(read.links[0].fragment, "f");
  EXPECT_EQ(read.links[0].text, "a text");
  EXPECT_EQ(read.links[1].address, "");
}

TEST(AnchorBytes, DamagedOnesAreRefused) {
  for (const char* bytes :
       {"", ":", "1", "x:", "1:2", "1:21:a", "1:02:a", "1:03:abc", "1:03:abc1:x", "-1:0",
        "99999999999999999999:0", "20:99999999999999999999"}) {
    PageAnchors read;
    EXPECT_FALSE(ReadAnchors(bytes, read)) << bytes;
    EXPECT_TRUE(read.places.empty() && read.links.empty()) << bytes;
  }
}

}  // namespace
}  // namespace vela::indexer
