#include "indexer/write/page_table_writer.h"

#include <gtest/gtest.h>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

using namespace std::string_literals;

TEST(PageTable, WritesRecordsAndLines) {
  const support::ScratchDirectory scratch;
  PageTableWriter writer(scratch.path() / "info", scratch.path() / "data");
  const auto add = [&](const std::string& address, const std::string& title,
                       const std::string& description, uint64_t size, int64_t time, FileType type) {
    PageEntry entry;
    entry.address = address;
    entry.title = title;
    entry.description = description;
    entry.fileSize = size;
    entry.time = time;
    entry.fileType = type;
    writer.AddPage(entry);
  };
  add("/a.html", "A &#38; B", "", 0x01020304, 0x11223344, FileType::kHtml);
  add("/b.txt", "pipe &#124; &#34;quote&#34;", "it&#39;s &#60;b&#62;", uint64_t{1} << 33, 0,
      FileType::kText);
  add("/c", "", "", 0, int64_t{1} << 31, FileType::kHtml);
  const PageTableWriter::Sizes sizes = writer.Finish();
  // The first line has 21 bytes; the second "/b.txt|" 7, the title 27, "|" 1, the description 20
  // and "||" with the line feed 3, that is 58; the third 7.
  EXPECT_EQ(ReadFile(scratch.path() / "data"),
            "/a.html|A &#38; B|||\n"
            "/b.txt|pipe &#124; &#34;quote&#34;|it&#39;s &#60;b&#62;||\n"
            "/c||||\n");
  EXPECT_EQ(ReadFile(scratch.path() / "info"),
            "\x11\0"
            "\0\0\0\0\0"
            "\x04\x03\x02\x01"
            "\x44\x33\x22\x11"
            "\0\0"
            "\x11\0"
            "\x15\0\0\0\0"
            "\xFF\xFF\xFF\xFF"
            "\0\0\0\0"
            "\0\x01"
            "\x11\0"
            "\x4F\0\0\0\0"
            "\0\0\0\0"
            "\0\0\0\0"
            "\0\0"s);
  EXPECT_EQ(sizes.infoBytes, 51u);
  EXPECT_EQ(sizes.dataBytes, 86u);
}

TEST(PageTable, TheMassOfATitleEndsItsRecord) {
  const support::ScratchDirectory scratch;
  PageTableWriter writer(scratch.path() / "info", scratch.path() / "data");
  PageEntry entry;
  entry.metaValues = "meta";
  entry.hasTitleMass = true;
  for (int i = 0; i < 3; ++i) writer.AddPage(entry);
  writer.SetTitleMass(0, 0x1234);
  writer.SetTitleMass(2, 0xFFFF);
  EXPECT_EQ(writer.Finish().infoBytes, 69u);  // three times 17, 4 and 2
  const std::string info = ReadFile(scratch.path() / "info");
  EXPECT_EQ(info.substr(0, 2), "\x17\0"s);
  EXPECT_EQ(info.substr(17, 6), "meta\x34\x12");
  EXPECT_EQ(info.substr(40, 6), "meta\0\0"s);
  EXPECT_EQ(info.substr(63, 6), "meta\xFF\xFF");
}

TEST(PageTable, ARecordHoldsCategoriesBoostAndMetaValues) {
  const support::ScratchDirectory scratch;
  PageTableWriter writer(scratch.path() / "info", scratch.path() / "data");
  PageEntry entry;
  entry.address = "/a";
  entry.title = "A";
  entry.image = "/a.png";
  entry.boost = 15;
  entry.categories = "\x01\x80"s;
  entry.metaValues = "new\0"s;
  writer.AddPage(entry);
  writer.AddPage(entry);
  EXPECT_EQ(writer.LineAt(0), 0u);
  EXPECT_EQ(writer.LineAt(1), 14u);  // behind "/a|A||/a.png|" and its line feed
  writer.Finish();
  EXPECT_EQ(ReadFile(scratch.path() / "data"), "/a|A||/a.png|\n/a|A||/a.png|\n");
  EXPECT_EQ(ReadFile(scratch.path() / "info").substr(0, 23),
            "\x17\0"
            "\0\0\0\0\0"
            "\0\0\0\0"
            "\0\0\0\0"
            "\x0F\0"
            "\x01\x80new\0"s);
}

TEST(PageTable, CategoriesCanComeLater) {
  const support::ScratchDirectory scratch;
  PageTableWriter writer(scratch.path() / "info", scratch.path() / "data");
  PageEntry entry;
  for (const char* set : {"\x01\x80", "\x02\x40", "\x04\x20"}) {
    entry.categories = set;
    entry.metaValues = "meta";
    writer.AddPage(entry);
  }
  writer.AddToCategories(1, "\x0A\x01");
  entry.categories = "\x08\x10";
  writer.AddPage(entry);
  writer.AddToCategories(3, "\x01\x02");
  const PageTableWriter::Sizes sizes = writer.Finish();
  const std::string info = ReadFile(scratch.path() / "info");
  ASSERT_EQ(info.size(), 4 * 23u);
  EXPECT_EQ(sizes.infoBytes, info.size());
  const char* kSets[] = {"\x01\x80meta", "\x0A\x41meta", "\x04\x20meta", "\x09\x12meta"};
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(info.substr(i * 23 + 17, 6), kSets[i]);
}

TEST(PageTable, ADateCanComeLater) {
  const support::ScratchDirectory scratch;
  PageTableWriter writer(scratch.path() / "info", scratch.path() / "data");
  PageEntry entry;
  entry.time = 0x11223344;
  for (int i = 0; i < 3; ++i) writer.AddPage(entry);
  writer.SetTime(1, 0x01020304);
  writer.SetTime(2, int64_t{1} << 31);  // no date that a record can hold
  writer.Finish();
  const std::string info = ReadFile(scratch.path() / "info");
  ASSERT_EQ(info.size(), 3 * 17u);
  const std::string dates[] = {"\x44\x33\x22\x11", "\x04\x03\x02\x01", "\0\0\0\0"s};
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(info.substr(i * 17 + 11, 4), dates[i]);
}

TEST(PageTable, PagesFarApartCanChangeInAnyOrder) {
  const support::ScratchDirectory scratch;
  PageTableWriter writer(scratch.path() / "info", scratch.path() / "data");
  PageEntry entry;
  entry.hasTitleMass = true;
  constexpr uint32_t kPages = 10000;  // 190,000 bytes
  for (uint32_t page = 0; page < kPages; ++page) {
    entry.address = "/" + std::to_string(page);
    writer.AddPage(entry);
  }
  for (uint32_t page = 0; page < kPages; ++page) writer.SetTitleMass(page, page);
  for (uint32_t page = kPages; page-- > 0;) writer.SetTime(page, page + 1);
  EXPECT_EQ(writer.ReadLine(9999).address, "/9999");
  EXPECT_EQ(writer.Finish().infoBytes, kPages * 19u);
  const std::string info = ReadFile(scratch.path() / "info");
  const auto numberAt = [&](size_t at) {
    return static_cast<unsigned char>(info[at]) | static_cast<unsigned char>(info[at + 1]) << 8;
  };
  for (uint32_t page = 0; page < kPages; ++page) {
    ASSERT_EQ(numberAt(page * 19), 19) << page;
    ASSERT_EQ(numberAt(page * 19 + 11), static_cast<int>(page + 1)) << page;
    ASSERT_EQ(numberAt(page * 19 + 17), static_cast<int>(page)) << page;
  }
}

}  // namespace
}  // namespace vela::indexer
