#include "index/page_info.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using namespace std::string_literals;
using support::kNoLookup;
using support::LittleEndian;
using support::OpenDirectory;

// A record of the fixed fields 1 to 6 and what follows them.
std::string Record(bool big, const std::string& tail = "") {
  const std::string fields = LittleEndian(0xFEDCBA9876, 5) + LittleEndian(0x87654321, 4) +
                             LittleEndian(0x80000001, 4) + "\x0F\xC8";
  const size_t width = big ? 4 : 2;
  return LittleEndian(width + fields.size() + tail.size(), width) + fields + tail;
}

struct Load {
  OpenDirectory site;
  Settings settings;
  PageTable pages;

  Load(const std::string& bytes, int32_t numPages, bool big) {
    site.Write("vela_pageinfo.vdat", bytes);
    settings.NumPages = numPages;
    settings.PageInfoSize = static_cast<int32_t>(bytes.size());
    settings.UseBigPageInfoData = big ? 1 : 0;
  }
  LoadStatus Run() { return LoadPageInfo(pages, site.directory, settings, kNoLookup); }
};

TEST(PageInfo, FieldsOfBothLayouts) {
  for (bool big : {false, true}) {
    SCOPED_TRACE(big ? "big" : "small");
    Load load(Record(big) + Record(big, "tail"), 2, big);
    ASSERT_EQ(load.Run(), LoadStatus::kOk);
    for (uint32_t page : {0u, 1u}) {
      EXPECT_EQ(PageDataOffset(load.pages, page), 0xFEDCBA9876u);
      EXPECT_EQ(PageFileSize(load.pages, page), 0x87654321u);
      EXPECT_EQ(PageDateTime(load.pages, page), -2147483647);
      EXPECT_EQ(PageBoost(load.pages, page), 15);
      EXPECT_EQ(PageFileType(load.pages, page), 200);
    }
  }
}

TEST(PageInfo, TheMassOfATitleEndsTheRecord) {
  for (bool big : {false, true}) {
    Load load(Record(big, "\x34\x12") + Record(big, "more\xFF\xFF"), 2, big);
    ASSERT_EQ(load.Run(), LoadStatus::kOk);
    EXPECT_EQ(PageTitleMass(load.pages, 0), 0x1234u);
    EXPECT_EQ(PageTitleMass(load.pages, 1), 0xFFFFu);
  }
}

TEST(PageInfo, ARecordTooShortForAMassHasNone) {
  // Lengths below that of a mass: 0 stands for every page behind it, 1 reads into its own length.
  Load load("\0\0"s, 3, false);
  load.Run();
  for (uint32_t page : {0u, 2u}) EXPECT_EQ(PageTitleMass(load.pages, page), 0u);
  Load one("\x01\0\0"s, 1, false);
  one.Run();
  EXPECT_EQ(PageTitleMass(one.pages, 0), 0u);
}

TEST(PageInfo, BigLayoutHasTheCategorySetAtByte19) {
  Load load(Record(true, "\x05\x80"), 1, true);
  load.settings.UseCats = 1;
  load.settings.NumCatBytes = 2;
  ASSERT_EQ(load.Run(), LoadStatus::kOk);
  ASSERT_EQ(load.pages.image.size(), 21u);
  EXPECT_TRUE(PageCategoryBit(load.pages, 0, 0, 0));
  EXPECT_FALSE(PageCategoryBit(load.pages, 0, 0, 1));
  EXPECT_TRUE(PageCategoryBit(load.pages, 0, 0, 2));
  EXPECT_FALSE(PageCategoryBit(load.pages, 0, 1, 0));
  EXPECT_TRUE(PageCategoryBit(load.pages, 0, 1, 7));
}

TEST(PageInfo, MetaDataStartsBehindTwoCategoryBytes) {
  for (bool big : {false, true}) {
    SCOPED_TRACE(big ? "byte 21" : "byte 19");
    Load load(Record(big, "ccmeta") + Record(big, "CCMORE"), 2, big);
    load.settings.UseCats = 1;
    load.settings.NumCatBytes = 2;
    load.settings.UseMetaFields = 1;
    ASSERT_EQ(load.Run(), LoadStatus::kOk);
    EXPECT_EQ(PageMetaData(load.pages, 0), "meta");
    EXPECT_EQ(PageMetaData(load.pages, 1), "MORE");
  }
}

TEST(PageInfo, MetaDataTable) {
  const struct {
    const char* what;
    int32_t useCats;
    int32_t catBytes;
    std::string tail;
    std::string expected;
  } cases[] = {
      {"without categories", 0, 2, "meta", "meta"},
      {"categories of no bytes", 1, 0, "meta", "meta"},
      {"a negative number of bytes", 1, -3, "meta", "meta"},
      {"the record ends with its categories", 1, 2, "cc", ""},
      {"the record ends within its categories", 1, 4, "cc", ""},
      {"no data at all", 0, 0, "", ""},
      {"more category bytes than the record has", 1, INT32_MAX, "cc", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Load load(Record(false, c.tail) + Record(false, "next"), 2, false);
    load.settings.UseCats = c.useCats;
    load.settings.NumCatBytes = c.catBytes;
    load.settings.UseMetaFields = 1;
    ASSERT_EQ(load.Run(), LoadStatus::kOk);
    EXPECT_EQ(PageMetaData(load.pages, 0), c.expected);
  }
}

TEST(PageInfo, FileOneByteLongerThanItsRecordsFailsWithTheWarning) {
  Load load(Record(false) + "x", 1, false);
  EXPECT_EQ(load.Run(), LoadStatus::kSlackAtEnd);
}

TEST(PageInfo, OutcomesTable) {
  const std::string small = Record(false);
  const std::string big = Record(true);
  const auto size = static_cast<int32_t>(small.size());
  const struct {
    const char* what;
    std::string bytes;
    int32_t pageInfoSize;
    int32_t numPages;
    bool big;
    LoadStatus expected;
  } cases[] = {
      {"one record", small, size, 1, false, LoadStatus::kOk},
      {"no pages", "", 0, 0, false, LoadStatus::kOk},
      {"one byte less than promised", small, size + 1, 1, false, LoadStatus::kTooShort},
      {"an absurd size", small, INT32_MAX, 1, false, LoadStatus::kTooShort},
      {"a negative size", small, -1, 1, false, LoadStatus::kNoMemory},
      {"the most negative size", small, INT32_MIN, 1, false, LoadStatus::kNoMemory},
      {"the file may go on behind the size", small + "more", size, 1, false, LoadStatus::kOk},
      {"one page too many", small, size, 2, false, LoadStatus::kRecordBeyondEnd},
      {"one page too few", small + small, 2 * size, 1, false, LoadStatus::kSlackAtEnd},
      {"a page in an empty file", "", 0, 1, false, LoadStatus::kRecordBeyondEnd},
      {"a record that starts one byte before the end", small + "\x01", size + 1, 2, false,
       LoadStatus::kRecordBeyondEnd},
      {"a big record that starts three bytes before the end", big + "\x03\0\0"s, 22, 2, true,
       LoadStatus::kRecordBeyondEnd},
      {"a record one byte beyond the end", "\x03\0"s, 2, 1, false, LoadStatus::kRecordBeyondEnd},
      {"a record of the longest length", "\xFF\xFF"s + std::string(30, 'x'), 32, 1, false,
       LoadStatus::kRecordBeyondEnd},
      {"a big length that passes 31 bits", "\xFF\xFF\xFF\xFF"s + std::string(30, 'x'), 34, 1, true,
       LoadStatus::kRecordBeyondEnd},
      {"two big lengths whose sum passes 32 bits",
       "\x04\0\0\0"s + "\xFE\xFF\xFF\xFF"s + std::string(30, 'x'), 38, 2, true,
       LoadStatus::kRecordBeyondEnd},
      {"a record of only its length", "\x02\0\x02\0"s, 4, 2, false, LoadStatus::kOk},
      {"a record shorter than its length field", "\x01\0\0"s, 3, 2, false, LoadStatus::kSlackAtEnd},
      {"records of no length never end", "\0\0"s, 2, 3, false, LoadStatus::kSlackAtEnd},
      {"very many records of no length", "\0\0"s, 2, 500000000, false, LoadStatus::kSlackAtEnd},
      {"more pages than memory can hold", small, size, INT32_MAX, false, LoadStatus::kNoMemory},
      {"a negative number of pages", small, size, -1, false, LoadStatus::kNoMemory},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Load load(c.bytes, c.numPages, c.big);
    load.settings.PageInfoSize = c.pageInfoSize;
    EXPECT_EQ(load.Run(), c.expected);
  }
}

TEST(PageInfo, ShortRecordsReadOnAndAsZeroBeyondTheEnd) {
  // Page 0 has only its length and borrows from page 1, of which everything is cut but its length
  // and one byte of the position.
  Load load("\x02\0\x03\0\x7F"s, 2, false);
  ASSERT_EQ(load.Run(), LoadStatus::kOk);
  EXPECT_EQ(PageDataOffset(load.pages, 0), 0x7F0003u);
  EXPECT_EQ(PageFileSize(load.pages, 0), 0u);
  EXPECT_EQ(PageDataOffset(load.pages, 1), 0x7Fu);
  EXPECT_EQ(PageDateTime(load.pages, 1), 0);
  EXPECT_EQ(PageBoost(load.pages, 1), 0);
  EXPECT_EQ(PageFileType(load.pages, 1), 0);
  EXPECT_FALSE(PageCategoryBit(load.pages, 1, 0, 0));
  EXPECT_EQ(PageMetaData(load.pages, 1), "");
}

TEST(PageInfo, FileMissing) {
  OpenDirectory site;
  Settings settings;
  PageTable pages;
  EXPECT_EQ(LoadPageInfo(pages, site.directory, settings, kNoLookup), LoadStatus::kCannotOpen);
}

TEST(PageInfo, FailedAllocation) {
  Load load(Record(false), 1, false);
  g_failAllocationNumber = 2;  // without memory for its copy the file is mapped
  EXPECT_EQ(load.Run(), LoadStatus::kNoMemory);
  g_failAllocationNumber = 0;
}

}  // namespace
}  // namespace vela
