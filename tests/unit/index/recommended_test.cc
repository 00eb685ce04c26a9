#include "index/recommended.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::OpenDirectory;
using support::Repeat;

Settings SettingsOf(int32_t numRecommended, int32_t lineLength = 32) {
  Settings settings;
  settings.Recommended = 1;
  settings.NumRecommended = numRecommended;
  settings.MaxKeyWordLineLen = lineLength;
  return settings;
}

// The ties as "[keyword]offset ".
std::string TiesOf(const RecommendedTies& ties) {
  std::string text;
  for (int32_t i = 0; i < ties.keywords.size(); ++i) {
    text += "[" + std::string(ties.keywords.At(i)) + "]" +
            std::to_string(ties.dataOffsets[static_cast<size_t>(i)]) + " ";
  }
  return text;
}

TEST(Recommended, LinesTable) {
  const struct {
    const char* what;
    std::string file;
    std::string ties;
  } cases[] = {
      {"an empty file", "", ""},
      {"a word", "news 17\n", "[news]17 "},
      {"a keyword with blanks", "latest news 17\n", "[latest news]17 "},
      {"several keywords stay together", "news,latest news,n* 17\n", "[news,latest news,n*]17 "},
      {"the number stands behind the last blank", "room 101 17\n", "[room 101]17 "},
      {"a line without any blank is skipped", "news\nold 3\n", "[old]3 "},
      {"a line whose only blank comes first is skipped", " 17\nold 3\n", "[old]3 "},
      {"an empty line is skipped", "\nold 3\n\n", "[old]3 "},
      {"a keyword of blanks", "   17\n", "[  ]17 "},
      {"two blanks before the number", "news  17\n", "[news ]17 "},
      {"no digits", "news old\n", "[news]0 "},
      {"a blank at the end", "news \n", "[news]0 "},
      {"a carriage return", "news 17\r\nold 3\r\n", "[news]17 [old]3 "},
      {"the last line without a line feed", "news 17\nold 3", "[news]17 [old]3 "},
      {"an offset of more than 32 bits", "news 12345678901\n", "[news]12345678901 "},
      {"the number ends at the first other byte", "news 17x5\n", "[news]17 "},
      {"ties keep the order of the file", "b 2\na 1\nb 3\n", "[b]2 [a]1 [b]3 "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenDirectory site;
    site.Write("vela_recommended.vdat", c.file);
    RecommendedTies ties;
    ASSERT_EQ(LoadRecommended(ties, site.directory, SettingsOf(10)), LoadStatus::kOk);
    EXPECT_EQ(TiesOf(ties), c.ties);
  }
}

TEST(Recommended, LongLinesAreReadInPieces) {
  const struct {
    const char* what;
    int32_t lineLength;
    std::string file;
    std::string ties;
  } cases[] = {
      {"the first piece has a number of its own", 8, "news 12345 x 3\n", "[news]12 [345 x]3 "},
      {"a piece without a blank is skipped", 8, "latestnews 17\n", "[ews]17 "},
      {"a piece that begins with its only blank", 8, "newnews 17\n", ""},
      {"pieces of one byte", 2, "a 1\n", ""},
      {"a length below 2 counts as 2", -1, "a 1\n", ""},
      {"the greatest length", INT32_MAX, "news 17\n", "[news]17 "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenDirectory site;
    site.Write("vela_recommended.vdat", c.file);
    RecommendedTies ties;
    ASSERT_EQ(LoadRecommended(ties, site.directory, SettingsOf(10, c.lineLength)), LoadStatus::kOk);
    EXPECT_EQ(TiesOf(ties), c.ties);
  }
}

TEST(Recommended, KeywordHoldsAtMost500Bytes) {
  for (size_t length : {size_t{499}, size_t{500}, size_t{501}, size_t{900}}) {
    SCOPED_TRACE(length);
    OpenDirectory site;
    site.Write("vela_recommended.vdat", std::string(length, 'k') + " 17\nold 3\n");
    RecommendedTies ties;
    ASSERT_EQ(LoadRecommended(ties, site.directory, SettingsOf(10, 1000)), LoadStatus::kOk);
    EXPECT_EQ(TiesOf(ties), "[" + std::string(length < 500 ? length : 500, 'k') + "]17 [old]3 ");
  }
}

TEST(Recommended, NoMoreTiesThanTheSettingsSay) {
  const struct {
    int32_t numRecommended;
    const char* ties;
  } cases[] = {
      {0, ""}, {1, "[a]1 "}, {2, "[a]1 [b]2 "}, {3, "[a]1 [b]2 [c]3 "}, {9, "[a]1 [b]2 [c]3 "}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.numRecommended);
    OpenDirectory site;
    site.Write("vela_recommended.vdat", "a 1\nnone\nb 2\nc 3\n");
    RecommendedTies ties;
    ASSERT_EQ(LoadRecommended(ties, site.directory, SettingsOf(c.numRecommended)), LoadStatus::kOk);
    EXPECT_EQ(TiesOf(ties), c.ties);
  }
}

TEST(Recommended, SizesThatAreRefused) {
  for (int32_t count : {-1, INT32_MIN, INT32_MAX}) {
    SCOPED_TRACE(count);
    OpenDirectory site;
    site.Write("vela_recommended.vdat", "a 1\n");
    RecommendedTies ties;
    EXPECT_EQ(LoadRecommended(ties, site.directory, SettingsOf(count)), LoadStatus::kNoMemory);
  }
}

TEST(Recommended, FileThatCannotBeOpened) {
  OpenDirectory site;
  RecommendedTies ties;
  EXPECT_EQ(LoadRecommended(ties, site.directory, SettingsOf(1)), LoadStatus::kCannotOpen);
  std::filesystem::create_directory(site.scratch.path() / "vela_recommended.vdat");
  EXPECT_EQ(LoadRecommended(ties, site.directory, SettingsOf(1)), LoadStatus::kCannotOpen);
}

TEST(Recommended, OutOfMemoryAtEveryAllocation) {
  OpenDirectory site;
  site.Write("vela_recommended.vdat", "a 1\nb 2\n");
  int failures = 0;
  // Without memory for its copy, the first allocation, the file is mapped.
  for (int32_t number = 2; number < 20; ++number) {
    RecommendedTies ties;
    g_failAllocationNumber = number;
    const LoadStatus status = LoadRecommended(ties, site.directory, SettingsOf(9));
    const bool reached = g_failAllocationNumber == 0;
    g_failAllocationNumber = 0;
    if (!reached) break;
    EXPECT_EQ(status, LoadStatus::kNoMemory) << number;
    ++failures;
  }
  EXPECT_GT(failures, 0);
}

}  // namespace
}  // namespace vela
