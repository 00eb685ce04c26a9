#include "output/sections.h"

#include <gtest/gtest.h>

#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::Repeat;

TEST(Sections, StartEmptyWithRoomFor100Bytes) {
  OutputSections sections;
  ASSERT_TRUE(AllocateSections(sections, 10));
  for (const GrowText& text : sections.texts) {
    EXPECT_EQ(text.capacity(), 100);
    EXPECT_EQ(text.length(), 0);
    EXPECT_EQ(text.view(), "");
  }
  EXPECT_EQ(sections.results.capacity(), 72610);
  EXPECT_EQ(sections.results.length(), 0);
}

TEST(Sections, MarkersStandInSectionOrder) {
  const char* const names[] = {"FORMSTART",      "FORMEND",      "SEARCHBOX",   "SEARCHBUTTON",
                               "RESULTSPERPAGE", "MATCHOPTIONS", "CATEGORIES",  "CUSTOMMETAOPTIONS",
                               "HEADING",        "SUMMARY",      "SUGGESTION",  "PAGESCOUNT",
                               "SORTING",        "SEARCHTIME",   "RECOMMENDED", "PAGENUMBERS",
                               "CATSUMMARY",     "JAVASCRIPTS",  "DATERANGE"};
  ASSERT_EQ(std::size(names), kSectionCount);
  for (size_t i = 0; i < kSectionCount; ++i) {
    EXPECT_EQ(kSectionMarkers[i], std::string("<!--VELA_SHOW_") + names[i] + "-->");
  }
  EXPECT_EQ(static_cast<int>(Section::kHeading), 8);
  EXPECT_EQ(static_cast<int>(Section::kDateRange), 18);
}

TEST(Sections, EachTakesItsOwnText) {
  OutputSections sections;
  ASSERT_TRUE(AllocateSections(sections, 10));
  for (size_t i = 0; i < kSectionCount; ++i) {
    EXPECT_EQ(AppendSection(sections, static_cast<Section>(i), "<%d>", static_cast<int>(i)),
              i < 10 ? 3 : 4);
  }
  for (size_t i = 0; i < kSectionCount; ++i) {
    EXPECT_EQ(SectionText(sections, static_cast<Section>(i)), "<" + std::to_string(i) + ">");
  }
  ClearSection(sections, Section::kHeading);
  EXPECT_EQ(SectionText(sections, Section::kHeading), "");
  EXPECT_EQ(SectionText(sections, Section::kSummary), "<9>");
}

TEST(Sections, ReceivingTwoHundredBytesAtNinety) {
  OutputSections sections;
  ASSERT_TRUE(AllocateSections(sections, 10));
  AppendSection(sections, Section::kSummary, "%s", Repeat("x", 90).c_str());
  AppendSection(sections, Section::kSummary, "%s", Repeat("y", 200).c_str());
  EXPECT_EQ(sections.texts[9].capacity(), 291);
}

TEST(Sections, ResultsAreCutPerWriteAndCountedInFull) {
  OutputSections sections;
  ASSERT_TRUE(AllocateSections(sections, 1));
  EXPECT_EQ(AppendResults(sections, "%s", Repeat("x", 12000).c_str()), 12000);
  EXPECT_EQ(sections.results.view(), Repeat("x", 10239));
  EXPECT_EQ(sections.results.length(), 12000);
  EXPECT_EQ(AppendResults(sections, "%s", "y"), 1);
  EXPECT_EQ(sections.results.view(), Repeat("x", 10239) + "y");
}

TEST(Sections, TextIsNoFormat) {
  OutputSections sections;
  ASSERT_TRUE(AllocateSections(sections, 1));
  AppendSection(sections, Section::kHeading, "%s", "100%s%n");
  AppendSectionRaw(sections, Section::kHeading, "%d");
  EXPECT_EQ(SectionText(sections, Section::kHeading), "100%s%n%d");
  AppendResultsRaw(sections, "%d%n");
  EXPECT_EQ(sections.results.view(), "%d%n");
}

TEST(Sections, WithoutMemoryTakeNoText) {
  OutputSections sections;
  EXPECT_EQ(AppendSection(sections, Section::kHeading, "x"), -1);
  EXPECT_EQ(AppendResults(sections, "x"), -1);
  EXPECT_EQ(AppendSectionRaw(sections, Section::kHeading, "x"), -1);
  EXPECT_EQ(AppendResultsRaw(sections, "x"), -1);
  EXPECT_EQ(SectionText(sections, Section::kHeading), "");
}

TEST(Sections, StrangeNumbersOfResults) {
  for (int32_t perPage : {0, -5, INT32_MIN}) {
    OutputSections sections;
    EXPECT_TRUE(AllocateSections(sections, perPage));
    EXPECT_EQ(AppendResults(sections, "text"), 4);
    EXPECT_EQ(sections.results.view(), "text");
  }
}

}  // namespace
}  // namespace vela
