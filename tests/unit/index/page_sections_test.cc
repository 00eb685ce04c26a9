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

// Page 1 has "intro" from 40 and "use" from 80 to 120, page 3 "api" from 200 on.
std::string File() {
  const std::string texts = "introFirst stepsuseHow to use itapi";
  const std::vector<SectionRecord> records = {
      {.position = 40, .page = 1, .text = 0, .anchorLength = 5, .headingLength = 11},
      {.position = 80, .page = 1, .text = 16, .anchorLength = 3, .headingLength = 13},
      {.position = 120, .page = 1},
      {.position = 200, .page = 3, .text = 32, .anchorLength = 3}};
  std::string file = BytesOf(SectionsHeader{.generation = kGeneration,
                                            .pageTextSize = kPageTextSize,
                                            .count = records.size(),
                                            .textBytes = texts.size()});
  for (const SectionRecord& record : records) file += BytesOf(record);
  return file + texts;
}

std::string Found(const std::string& file, uint32_t page, uint64_t position,
                  int32_t generation = kGeneration, uint64_t pageTextSize = kPageTextSize) {
  SectionsFile sections;
  sections.Open(file, generation, pageTextSize);
  PageSection section;
  if (!sections.Find(page, position, section)) return "none";
  return std::string(section.anchor) + "|" + std::string(section.heading);
}

TEST(SectionsFile, Table) {
  const struct {
    const char* what;
    uint32_t page;
    uint64_t position;
    const char* expected;
  } cases[] = {
      {"ahead of the first section", 1, 36, "none"},
      {"its first word", 1, 40, "intro|First steps"},
      {"its last", 1, 76, "intro|First steps"},
      {"the next", 1, 80, "use|How to use it"},
      {"behind the running text", 1, 120, "none"},
      {"a page without sections", 2, 130, "none"},
      {"a heading without a text", 3, 396, "api|"},
      {"a place of another page", 2, 80, "none"},
      {"beyond the page text", 3, UINT64_MAX, "api|"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Found(File(), c.page, c.position), c.expected);
  }
}

// A record for each of the positions, in ascending order.
std::string FileWith(const std::vector<uint64_t>& positions, uint64_t pageTextSize) {
  std::string records;
  std::string texts;
  for (const uint64_t position : positions) {
    const std::string anchor = std::to_string(position);
    records += BytesOf(SectionRecord{.position = position,
                                     .text = static_cast<uint32_t>(texts.size()),
                                     .anchorLength = static_cast<uint16_t>(anchor.size())});
    texts += anchor;
  }
  return BytesOf(SectionsHeader{.generation = kGeneration,
                                .pageTextSize = pageTextSize,
                                .count = positions.size(),
                                .textBytes = texts.size()}) +
         records + texts;
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
    EXPECT_FALSE(sections.Find(0, positions[0] - 1, section));
    for (size_t i = 0; i < positions.size(); ++i) {
      const std::string expected = std::to_string(positions[i]);
      ASSERT_TRUE(sections.Find(0, positions[i], section)) << i;
      EXPECT_EQ(section.anchor, expected);
      const uint64_t last = i + 1 < positions.size() ? positions[i + 1] - 1 : UINT64_MAX;
      ASSERT_TRUE(sections.Find(0, last, section)) << i;
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
    (void)sections.Find(0, position, section);
  }
}

TEST(SectionsFile, IsNotUsedForAnotherIndex) {
  EXPECT_EQ(Found(File(), 1, 80, 8), "none");
  EXPECT_EQ(Found(File(), 1, 80, 0), "none");
  EXPECT_EQ(Found(File(), 1, 80, kGeneration, kPageTextSize + 4), "none");
}

TEST(SectionsFile, AFileOfAnotherLengthIsNone) {
  const std::string file = File();
  for (size_t length = 0; length < file.size(); ++length) {
    EXPECT_EQ(Found(file.substr(0, length), 1, 80), "none") << length;
  }
  EXPECT_EQ(Found(file + "x", 1, 80), "none");
}

TEST(SectionsFile, ATextBeyondTheTextsIsNone) {
  std::string file = File();
  const size_t second = sizeof(SectionsHeader) + sizeof(SectionRecord);
  file[second + offsetof(SectionRecord, text) + 3] = '\x7F';
  EXPECT_EQ(Found(file, 1, 80), "none");
  file = File();
  file[second + offsetof(SectionRecord, headingLength) + 1] = '\x01';
  EXPECT_EQ(Found(file, 1, 80), "none");
}

TEST(SectionsFile, MoreRecordsThanThereAreBytes) {
  std::string file = File();
  for (size_t i = 0; i < 8; ++i) file[offsetof(SectionsHeader, count) + i] = '\xFF';
  EXPECT_EQ(Found(file, 1, 80), "none");
}

}  // namespace
}  // namespace vela
