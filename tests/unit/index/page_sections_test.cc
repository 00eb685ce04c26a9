#include "index/page_sections.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace vela {
namespace {

constexpr int32_t kGeneration = 7;
constexpr uint64_t kPageTextSize = 400;

template <typename Record>
std::string BytesOf(const Record& record) {
  std::string bytes(sizeof record, '\0');
  memcpy(bytes.data(), &record, sizeof record);
  return bytes;
}

// A block of these bytes, which begins at that place, as the whole file.
struct Block {
  uint64_t position = 0;
  std::string bytes;
};
std::string FileOf(const std::vector<Block>& blocks, uint64_t pageTextSize = kPageTextSize) {
  std::string bytes;
  std::string guides;
  for (size_t i = 0; i < blocks.size(); ++i) {
    const Block& block = blocks[i];
    const uint64_t end = i + 1 < blocks.size() ? blocks[i + 1].position : UINT64_MAX;
    guides += BytesOf(SectionGuide{.position = block.position,
                                   .start = static_cast<uint32_t>(bytes.size()),
                                   .sum = SectionBlockSum(block.bytes, block.position, end)});
    bytes += block.bytes;
  }
  return BytesOf(SectionsHeader{.generation = kGeneration,
                                .pageTextSize = pageTextSize,
                                .blockBytes = bytes.size(),
                                .count = blocks.size()}) +
         bytes + guides;
}

std::string Bytes(std::string_view text) { return std::string(text); }

// One page has "intro" from 40 and "use" from 80 to 120, another "api" from 200 on, a third
// "apiapi" from 1240 and an address of one letter, nine times, from 1244 on.
std::string File() {
  using namespace std::literals;
  return FileOf(
      {{40,
        // At the block's place, 5 bytes of anchor and 11 of heading: 16 as they are.
        Bytes("\0\5\x0B\x0FintroFirst steps"sv) +
            // 40 bytes behind that, 3 and 9: "use", six bytes from 14 before, three from 9 before.
            Bytes("\x28\3\x09\2use\x8C\x0D\x80\x08"sv) +
            // An end, 40 bytes further.
            Bytes("\x28\0"sv)},
       {200, Bytes("\0\3\0\2api"sv) +
                 // 1040 bytes behind: 16 + 8 * 128. Six bytes from three before.
                 Bytes("\x90\x08\6\0\x8C\2"sv) +
                 // One byte, then eight times the one before.
                 Bytes("\4\x09\0\0z\x94\0"sv)}},
      2000);
}

std::string Found(const std::string& file, uint64_t position, int32_t generation = kGeneration,
                  uint64_t pageTextSize = 2000) {
  SectionsFile sections;
  sections.Open(file, generation, pageTextSize);
  PageSection section;
  if (!sections.Find(position, section)) return "none";
  return std::string(section.anchor) + "|" + std::string(section.heading);
}

TEST(SectionsFile, Table) {
  const struct {
    const char* what;
    uint64_t position;
    const char* expected;
  } cases[] = {
      {"ahead of the first section", 36, "none"},
      {"its first word", 40, "intro|First steps"},
      {"its last", 76, "intro|First steps"},
      {"the next, with a copy", 80, "use|First use"},
      {"behind the running text", 120, "none"},
      {"a page without sections", 196, "none"},
      {"the next block, a heading without a text", 200, "api|"},
      {"its last word", 1236, "api|"},
      {"a copy that reaches into itself", 1240, "apiapi|"},
      {"of one byte", 1244, "zzzzzzzzz|"},
      {"beyond the page text", UINT64_MAX, "zzzzzzzzz|"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Found(File(), c.position), c.expected);
  }
}

// A block for each of the positions, in ascending order.
std::string FileWith(const std::vector<uint64_t>& positions, uint64_t pageTextSize) {
  std::vector<Block> blocks;
  for (const uint64_t position : positions) {
    const std::string anchor = std::to_string(position);
    const auto length = static_cast<char>(anchor.size());
    blocks.push_back({position, {'\0', length, '\0', static_cast<char>(length - 1)}});
    blocks.back().bytes += anchor;
  }
  return FileOf(blocks, pageTextSize);
}

TEST(SectionsFile, TheSectionIsFoundHoweverTheyAreSpread) {
  std::vector<uint64_t> even;
  std::vector<uint64_t> early;  // all but one in the first hundredth of the text
  std::vector<uint64_t> growing;
  for (uint64_t i = 1; i <= 3000; ++i) {
    even.push_back(i * 40);
    early.push_back(i * 3);
    growing.push_back(i * i);
  }
  early.push_back(900'000);
  for (const std::vector<uint64_t>& positions : {even, early, growing}) {
    const uint64_t pageTextSize = 10'000'000;
    const std::string file = FileWith(positions, pageTextSize);
    SectionsFile sections;
    sections.Open(file, kGeneration, pageTextSize);
    PageSection section;
    EXPECT_FALSE(sections.Find(positions[0] - 1, section));
    for (size_t i = 0; i < positions.size(); ++i) {
      const std::string expected = std::to_string(positions[i]);
      ASSERT_TRUE(sections.Find(positions[i], section)) << i;
      EXPECT_EQ(section.anchor, expected);
      const uint64_t last = i + 1 < positions.size() ? positions[i + 1] - 1 : UINT64_MAX;
      ASSERT_TRUE(sections.Find(last, section)) << i;
      EXPECT_EQ(section.anchor, expected);
    }
  }
}

TEST(SectionsFile, PlacesInDisorderEndTheSearch) {
  std::vector<uint64_t> positions(1000, 0);
  for (size_t i = 0; i < positions.size(); ++i) positions[i] = i % 3 == 0 ? UINT64_MAX : 7 * i % 90;
  const std::string file = FileWith(positions, 400);
  SectionsFile sections;
  sections.Open(file, kGeneration, 400);
  PageSection section;
  for (uint64_t position = 0; position < 400; ++position) {
    (void)sections.Find(position, section);
  }
}

TEST(SectionsFile, IsNotUsedForAnotherIndex) {
  EXPECT_EQ(Found(File(), 80, 8), "none");
  EXPECT_EQ(Found(File(), 80, 0), "none");
  EXPECT_EQ(Found(File(), 80, kGeneration, 2004), "none");
}

TEST(SectionsFile, AFileOfAnotherLengthIsNone) {
  const std::string file = File();
  for (size_t length = 0; length < file.size(); ++length) {
    EXPECT_EQ(Found(file.substr(0, length), 80), "none") << length;
  }
  EXPECT_EQ(Found(file + "x", 80), "none");
}

// A section is the right one or none, whichever byte was changed.
TEST(SectionsFile, ChangedBytesShowNoOtherSection) {
  const std::string file = File();
  const std::string right = Found(file, 80);
  for (size_t at = 0; at < file.size(); ++at) {
    for (const char change : {'\x01', '\x80', '\xFF'}) {
      std::string bytes = file;
      bytes[at] = static_cast<char>(bytes[at] ^ change);
      const std::string found = Found(bytes, 80);
      EXPECT_TRUE(found == right || found == "none") << at << ": " << found;
    }
  }
}

TEST(SectionsFile, WhatDoesNotFitIsNone) {
  using namespace std::literals;
  const struct {
    const char* what;
    std::string_view block;
  } cases[] = {
      {"literals beyond the length", "\0\2\0\2abc"sv},
      {"a copy beyond it", "\0\4\0\1ab\x80\1"sv},
      {"a copy from ahead of the texts", "\0\5\0\1ab\x80\2"sv},
      {"no bytes for the literals", "\0\2\0\1a"sv},
      {"no bytes for a step", "\0\2\0"sv},
      {"a number that does not end", "\x80\x80\x80\x80\x80\x80\x80\x80\x80\x80\0"sv},
      {"a text that is longer than all may be", "\0\x81\x40\0\0a"sv},
      {"a length that is none", "\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F\0\0a"sv},
      {"nothing", ""sv},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Found(FileOf({{40, Bytes(c.block)}}), 80, kGeneration, kPageTextSize), "none");
  }
}

TEST(SectionsFile, MoreBlocksThanThereAreBytes) {
  std::string file = File();
  for (size_t i = 0; i < 8; ++i) file[offsetof(SectionsHeader, count) + i] = '\xFF';
  EXPECT_EQ(Found(file, 80), "none");
}

}  // namespace
}  // namespace vela
