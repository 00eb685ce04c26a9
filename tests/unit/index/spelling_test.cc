#include "index/spelling.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::kNoLookup;
using support::OpenDirectory;
using support::Repeat;

Settings SettingsOf(int32_t numSpellings, int32_t lineLength = 32) {
  Settings settings;
  settings.Spelling = 1;
  settings.NumSpellings = numSpellings;
  settings.MaxKeyWordLineLen = lineLength;
  return settings;
}

// The entries as "KEY first second third; ".
std::string EntriesOf(const SpellingTable& table) {
  std::string text;
  SpellingReader entries(table);
  SpellingEntry entry;
  while (entries.Next(entry)) {
    text += View(entry.key);
    for (int32_t word : entry.words) text += " " + std::to_string(word);
    text += "; ";
  }
  return text;
}

TEST(Spelling, LinesTable) {
  const struct {
    const char* what;
    std::string file;
    const char* entries;
  } cases[] = {
      {"an empty file", "", ""},
      {"a key of eight letters keeps six", "ABCDEFGH 12\n", "ABCDEF 12 0 0; "},
      {"one number", "KT 5\n", "KT 5 0 0; "},
      {"two numbers", "KT 5 6\n", "KT 5 6 0; "},
      {"three numbers", "KT 5 6 7\n", "KT 5 6 7; "},
      {"more numbers are ignored", "KT 5 6 7 8 9\n", "KT 5 6 7; "},
      {"a line with only a key does not count", "KT\nTK 1\n", "TK 1 0 0; "},
      {"only a key and a blank", "KT \nTK 1\n", "TK 1 0 0; "},
      {"nothing stays from a line that does not count", "KT 5 6 7\nX\nB 1\n",
       "KT 5 6 7; B 1 0 0; "},
      {"empty lines", "\n\nKT 5\n\n", "KT 5 0 0; "},
      {"a carriage return ends a field", "KT 5\r\nTK 1\r\n", "KT 5 0 0; TK 1 0 0; "},
      {"a carriage return between fields", "KT\r5\r6\n", "KT 5 6 0; "},
      {"the last line without a line feed", "KT 5\nTK 17", "KT 5 0 0; TK 17 0 0; "},
      {"runs of blanks", "  KT   5  6   7  \n", "KT 5 6 7; "},
      {"a tab is no separator", "KT\t1 2\n", "KT\t1 2 0 0; "},
      {"a negative number", "KT -3 -0 4\n", "KT -3 0 4; "},
      {"two signs are no number", "KT --3 5\n", "KT 0 5 0; "},
      {"a plus sign is no number", "KT +3 5\n", "KT 0 5 0; "},
      {"a number ends at the first other byte", "KT 12x 3.5 0x7\n", "KT 12 3 0; "},
      {"a word in a number's place still counts", "KT x\n", "KT 0 0 0; "},
      {"the largest number", "KT 2147483647\n", "KT 2147483647 0 0; "},
      {"numbers wrap", "KT 2147483648 4294967297 -2147483649\n", "KT -2147483648 1 2147483647; "},
      {"entries keep the order of the file", "B 1\nA 2\nB 3\n", "B 1 0 0; A 2 0 0; B 3 0 0; "},
      {"keys are not upper-cased", "kt 5\n", "kt 5 0 0; "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenDirectory site;
    site.Write("vela_spelling.vdat", c.file);
    SpellingTable table;
    ASSERT_EQ(LoadSpelling(table, site.directory, SettingsOf(10, 64), kNoLookup), LoadStatus::kOk);
    EXPECT_TRUE(table.isLoaded);
    EXPECT_EQ(EntriesOf(table), c.entries);
  }
}

TEST(Spelling, LongLinesAreReadInPieces) {
  const struct {
    const char* what;
    int32_t lineLength;
    std::string file;
    const char* entries;
  } cases[] = {
      {"a line of 40 characters", 32, "ABC 1 2 3" + Repeat(" ", 22) + "DEF 77  8\n",
       "ABC 1 2 3; DEF 77 8 0; "},
      {"cut inside a number", 32, "ABC " + Repeat(" ", 25) + "12345 6 7\n",
       "ABC 12 0 0; 345 6 7 0; "},
      {"the second piece has no number", 32, "ABC 1 2 3" + Repeat(" ", 22) + "DEF\nG 4\n",
       "ABC 1 2 3; G 4 0 0; "},
      {"31 bytes with the line feed are one piece", 32, "ABC " + Repeat(" ", 24) + "12\nD 3\n",
       "ABC 12 0 0; D 3 0 0; "},
      {"the line feed is a piece of its own", 32, "ABC " + Repeat(" ", 25) + "12\nD 3\n",
       "ABC 12 0 0; D 3 0 0; "},
      {"pieces of four bytes", 5, "A 12B 345\n", "A 12 0 0; B 34 0 0; "},
      {"pieces of one byte", 2, "A 1\nB 2\n", ""},
      {"a length below 2 counts as 2", 1, "A 1\nB 2\n", ""},
      {"a length of 0 counts as 2", 0, "A 1\n", ""},
      {"a negative length counts as 2", -5, "A 1\n", ""},
      {"the greatest length", INT32_MAX, "A 1\nB 2\n", "A 1 0 0; B 2 0 0; "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenDirectory site;
    site.Write("vela_spelling.vdat", c.file);
    SpellingTable table;
    ASSERT_EQ(LoadSpelling(table, site.directory, SettingsOf(10, c.lineLength), kNoLookup),
              LoadStatus::kOk);
    EXPECT_EQ(EntriesOf(table), c.entries);
  }
}

TEST(Spelling, RoomForOneEntryMoreThanTheSettingsSay) {
  const struct {
    int32_t numSpellings;
    const char* entries;
  } cases[] = {
      {0, "A 1 0 0; "},
      {1, "A 1 0 0; B 2 0 0; "},
      {2, "A 1 0 0; B 2 0 0; C 3 0 0; "},
      {3, "A 1 0 0; B 2 0 0; C 3 0 0; D 4 0 0; "},
      {100, "A 1 0 0; B 2 0 0; C 3 0 0; D 4 0 0; "},
      {100000000, "A 1 0 0; B 2 0 0; C 3 0 0; D 4 0 0; "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.numSpellings);
    OpenDirectory site;
    site.Write("vela_spelling.vdat", "A 1\nB 2\nnone\nC 3\nD 4\n");
    SpellingTable table;
    ASSERT_EQ(LoadSpelling(table, site.directory, SettingsOf(c.numSpellings), kNoLookup),
              LoadStatus::kOk);
    EXPECT_EQ(EntriesOf(table), c.entries);
  }
}

TEST(Spelling, SizesThatAreRefused) {
  const struct {
    const char* what;
    int32_t numSpellings;
    LoadStatus status;
  } cases[] = {
      {"negative", -1, LoadStatus::kNoMemory},
      {"the smallest number", INT32_MIN, LoadStatus::kNoMemory},
      // 16 bytes an entry, one entry more: 2147483632 and 2147483648 bytes.
      {"the largest table", 134217726, LoadStatus::kOk},
      {"one more", 134217727, LoadStatus::kNoMemory},
      {"the largest number", INT32_MAX, LoadStatus::kNoMemory},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenDirectory site;
    site.Write("vela_spelling.vdat", "A 1\n");
    SpellingTable table;
    EXPECT_EQ(LoadSpelling(table, site.directory, SettingsOf(c.numSpellings), kNoLookup), c.status);
    EXPECT_EQ(table.isLoaded, c.status == LoadStatus::kOk);
  }
}

TEST(Spelling, FileThatCannotBeOpened) {
  OpenDirectory site;
  SpellingTable table;
  EXPECT_EQ(LoadSpelling(table, site.directory, SettingsOf(1), kNoLookup), LoadStatus::kCannotOpen);
  EXPECT_FALSE(table.isLoaded);
  std::filesystem::create_directory(site.scratch.path() / "vela_spelling.vdat");
  EXPECT_EQ(LoadSpelling(table, site.directory, SettingsOf(1), kNoLookup), LoadStatus::kCannotOpen);
  EXPECT_FALSE(table.isLoaded);
  // The file is opened before its size is looked at.
  EXPECT_EQ(LoadSpelling(table, site.directory, SettingsOf(-1), kNoLookup),
            LoadStatus::kCannotOpen);
}

}  // namespace
}  // namespace vela
