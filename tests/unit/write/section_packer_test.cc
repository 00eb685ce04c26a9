#include "indexer/write/section_packer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "index/page_sections.h"

namespace vela::indexer {
namespace {

struct Section {
  uint64_t position;
  std::string anchor;
  std::string heading;
  bool operator==(const Section&) const = default;
};

std::vector<Section> SectionsIn(std::string_view block, uint64_t position) {
  std::vector<Section> sections;
  std::string texts(kSectionTextRoom, '\0');
  SectionBlock reader(block, position, texts.data());
  for (PageSection section; reader.Next(UINT64_MAX, section);) {
    sections.push_back(
        {reader.position(), std::string(section.anchor), std::string(section.heading)});
  }
  EXPECT_FALSE(reader.isBad());
  return sections;
}

TEST(SectionPacker, WhatWasPackedReadsBack) {
  std::string noise;
  for (uint32_t i = 0; i < 3000; ++i) noise += static_cast<char>(i * i * 2654435761U >> 24 | 1);
  const std::vector<std::vector<Section>> cases = {
      {{8, "a", ""}},
      {{8, "getName", "getName()"}, {1000, "getNames", "getNames()"}, {1004, "", ""}},
      {{0, std::string(500, 'x'), std::string(90, 'x')}, {70'000, "x", "x"}},
      {{0, noise, ""}, {4, noise.substr(0, 2000), ""}, {5, noise.substr(7, 90), noise}},
      {{uint64_t{1} << 39, "", ""}, {(uint64_t{1} << 40) - 1, "ab", "abababababababab"}},
  };
  SectionPacker packer;
  for (const std::vector<Section>& sections : cases) {
    uint64_t former = sections.front().position;
    for (const Section& each : sections) {
      ASSERT_FALSE(packer.IsFullFor(each.anchor.size() + each.heading.size()));
      packer.Add(each.position - former, each.anchor, each.heading);
      former = each.position;
    }
    const std::string_view block = packer.Finish();
    EXPECT_LE(block.size(), kSectionBlockRoom);
    EXPECT_EQ(SectionsIn(block, sections.front().position), sections);
    EXPECT_TRUE(packer.empty());
  }
}

TEST(SectionPacker, TakesWhatStoodBeforeFromThere) {
  SectionPacker packer;
  packer.Add(0, "configuration", "Configuration");
  const size_t first = packer.Finish().size();
  packer.Add(0, "configuration", "Configuration");
  packer.Add(4, "configurations", "Configurations");
  // Three numbers, two bytes for each copy and for each "s".
  EXPECT_LE(packer.Finish().size(), first + 3 + 4 * 2);
}

TEST(SectionPacker, IsFullByNumberAndByTexts) {
  SectionPacker packer;
  EXPECT_FALSE(packer.IsFullFor(kSectionTextRoom));
  EXPECT_TRUE(packer.IsFullFor(kSectionTextRoom + 1));
  packer.Add(0, "abc", "");
  EXPECT_FALSE(packer.IsFullFor(kSectionTextRoom - 3));
  EXPECT_TRUE(packer.IsFullFor(kSectionTextRoom - 2));
  for (size_t i = 1; i < kSectionsPerBlock; ++i) {
    ASSERT_FALSE(packer.IsFullFor(0));
    packer.Add(1, "", "");
  }
  EXPECT_TRUE(packer.IsFullFor(0));
  packer.Finish();
  EXPECT_FALSE(packer.IsFullFor(kSectionTextRoom));
}

}  // namespace
}  // namespace vela::indexer
