#include "index/dictionary.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using namespace std::string_literals;
using support::kNoLookup;
using support::OpenDirectory;
using support::Repeat;

void Prepare(Settings& settings) {
  settings.NumKeywords = 10;
  settings.OutputBasewordBufferSize = 1000;
  settings.OutputVariantBufferSize = 1000;
}

struct Word {
  std::string word;
  int64_t offset;
  int32_t variantCount;
  std::vector<std::string> variants;
};

std::vector<std::string> VariantsOf(const Dictionary& dictionary, int32_t number) {
  std::vector<std::string> variants;
  VariantReader reader(dictionary, dictionary.EntryAt(number));
  std::string_view variant;
  while (reader.Next(variant)) variants.emplace_back(variant);
  return variants;
}

void ExpectWords(const std::string& bytes, const std::vector<Word>& words,
                 const Settings& settings) {
  Dictionary dictionary;
  ASSERT_EQ(dictionary.Load(bytes, settings, kNoLookup).status, DictionaryStatus::kOk);
  ASSERT_EQ(dictionary.size(), static_cast<int32_t>(words.size()));
  for (int32_t i = 0; i < dictionary.size(); ++i) {
    const Word& expected = words[static_cast<size_t>(i)];
    SCOPED_TRACE(expected.word);
    const DictEntry entry = dictionary.EntryAt(i);
    EXPECT_EQ(dictionary.WordAt(i), expected.word);
    EXPECT_EQ(entry.word, expected.word);
    EXPECT_EQ(entry.offset, expected.offset);
    EXPECT_EQ(entry.variantCount, expected.variantCount);
    EXPECT_EQ(VariantsOf(dictionary, i), expected.variants);
  }
}

void ExpectWords(const std::string& bytes, const std::vector<Word>& words) {
  Settings settings;
  Prepare(settings);
  ExpectWords(bytes, words, settings);
}

DictionaryResult LoadOf(std::string_view bytes, const Settings& settings) {
  Dictionary dictionary;
  return dictionary.Load(bytes, settings, kNoLookup);
}

TEST(Dictionary, TwoVariantLinesBelongToTheEntryBeforeThem) {
  ExpectWords("run 40 2\nruns\nrunning\nwalk 50 0\n",
              {{"run", 40, 2, {"runs", "running"}}, {"walk", 50, 0, {}}});
}

TEST(Dictionary, OffsetOfMinusOneMarksAWordWithoutPages) {
  ExpectWords("run -1 0\n", {{"run", -1, 0, {}}});
}

TEST(Dictionary, LinesTable) {
  const struct {
    const char* what;
    std::string bytes;
    std::vector<Word> words;
  } cases[] = {
      {"an empty file is an empty dictionary", "", {}},
      {"carriage returns before line feeds",
       "run 40 1\r\nruns\r\nwalk 50 0\r\n",
       {{"run", 40, 1, {"runs"}}, {"walk", 50, 0, {}}}},
      {"a carriage return behind the offset",
       "run 40\r\nwalk 50\r\n",
       {{"run", 40, 0, {}}, {"walk", 50, 0, {}}}},
      {"no variant count", "run 40\nwalk 50 0\n", {{"run", 40, 0, {}}, {"walk", 50, 0, {}}}},
      {"no offset leaves 0", "run \nwalk 50 0\n", {{"run", 0, 0, {}}, {"walk", 50, 0, {}}}},
      {"blanks before the word", "   run 40 0\n", {{"run", 40, 0, {}}}},
      {"several blanks between the numbers", "run   40   1\nruns\n", {{"run", 40, 1, {"runs"}}}},
      {"a line of blanks holds no word",
       "  \nrun 40 0\n \nwalk 50 0\n",
       {{"run", 40, 0, {}}, {"walk", 50, 0, {}}}},
      {"letters end a number", "run 4x9 1x\nruns\n", {{"run", 4, 1, {"runs"}}}},
      {"no digit is 0", "run x y\nwalk - 0\n", {{"run", 0, 0, {}}, {"walk", 0, 0, {}}}},
      {"only one minus sign", "run --5 0\n", {{"run", 0, 0, {}}}},
      {"a plus sign is no digit", "run +5 0\n", {{"run", 0, 0, {}}}},
      {"a 40-bit offset", "run 1099511627775 0\n", {{"run", 1099511627775, 0, {}}}},
      {"the largest offset", "run 9223372036854775807 0\n", {{"run", INT64_MAX, 0, {}}}},
      {"an offset wraps at 64 bits", "run 18446744073709551621 0\n", {{"run", 5, 0, {}}}},
      {"a wrapped offset can be -1", "run 18446744073709551615 0\n", {{"run", -1, 0, {}}}},
      {"a count wraps at 32 bits",
       "run 40 4294967297\nruns\nwalk 50 0\n",
       {{"run", 40, 1, {"runs"}}, {"walk", 50, 0, {}}}},
      {"a negative count takes no variant lines",
       "run 40 -2\nwalk 50 0\n",
       {{"run", 40, -2, {}}, {"walk", 50, 0, {}}}},
      {"more variants promised than lines left", "run 40 5\nruns\n", {{"run", 40, 5, {"runs"}}}},
      {"a variant line holds one token",
       "run 40 1\nruns fast\nwalk 50 0\n",
       {{"run", 40, 1, {"runs"}}, {"walk", 50, 0, {}}}},
      {"a variant behind blanks", "run 40 1\n  runs\n", {{"run", 40, 1, {"runs"}}}},
      {"the last line lacks its line feed", "run 40 0\nwalk 50 0", {{"run", 40, 0, {}}}},
      {"a last variant lacks its line feed", "run 40 1\nruns", {{"run", 40, 1, {}}}},
      {"a NUL ends a line", "run 40\0 1\nwalk 50 0\n"s, {{"run", 40, 0, {}}, {"walk", 50, 0, {}}}},
      {"a NUL ends a variant",
       "run 40 1\nru\0ns\nwalk 50 0\n"s,
       {{"run", 40, 1, {"ru"}}, {"walk", 50, 0, {}}}},
      {"accented bytes", "\xE9t\xE9 40 0\n", {{"\xE9t\xE9", 40, 0, {}}}},
      {"an empty variant line moves the count on",
       "run 40 2\nruns\n\nwalk 50 0\n",
       {{"run", 40, 2, {"runs"}}, {"walk", 50, 0, {}}}},
      {"an empty first variant line leaves no variants",
       "run 40 2\n\nruns\nwalk 50 0\n",
       {{"run", 40, 2, {}}, {"walk", 50, 0, {}}}},
      {"a word twice", "run 40 0\nrun 50 0\n", {{"run", 40, 0, {}}, {"run", 50, 0, {}}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ExpectWords(c.bytes, c.words);
  }
}

TEST(Dictionary, VariantOf400CharactersIsDropped) {
  const std::string kept = Repeat("v", 399);
  const std::string dropped = Repeat("v", 400);
  ExpectWords("run 40 1\n" + kept + "\nwalk 50 0\n", {{"run", 40, 1, {kept}}, {"walk", 50, 0, {}}});
  ExpectWords("run 40 2\nruns\n" + dropped + "\nwalk 50 0\n",
              {{"run", 40, 2, {"runs"}}, {"walk", 50, 0, {}}});
}

TEST(Dictionary, DroppedFirstVariantLeavesTheWordWithoutVariants) {
  ExpectWords("run 40 2\n" + Repeat("v", 400) + "\nruns\nwalk 50 0\n",
              {{"run", 40, 2, {}}, {"walk", 50, 0, {}}});
}

TEST(Dictionary, LongLine) {
  Settings settings;
  Prepare(settings);
  settings.OutputBasewordBufferSize = 40000;
  const std::string word = Repeat("w", 31900);
  ExpectWords(word + " 7 0\nwalk 50 0\n", {{word, 7, 0, {}}, {"walk", 50, 0, {}}}, settings);
}

TEST(Dictionary, LineOfMoreThanTheLimitEndsTheDictionary) {
  ExpectWords("run 40 0\n" + Repeat("w", 33000) + " 7 0\nwalk 50 0\n", {{"run", 40, 0, {}}});
}

TEST(Dictionary, NumKeywordsTable) {
  const struct {
    const char* what;
    int32_t numKeywords;
    DictionaryStatus status;
    int32_t entries;  // when the loading stopped
  } cases[] = {
      {"more than the words", 100, DictionaryStatus::kOk, 0},
      {"as many as the words", 2, DictionaryStatus::kOk, 0},
      {"one less", 1, DictionaryStatus::kTooManyEntries, 2},
      {"none", 0, DictionaryStatus::kTooManyEntries, 1},
      {"negative", -1, DictionaryStatus::kNoMemory, 0},
      {"the most negative", INT32_MIN, DictionaryStatus::kNoMemory, 0},
      {"the table just fits into 2147483647 bytes", 107374181, DictionaryStatus::kOk, 0},
      {"the table does not fit", 107374182, DictionaryStatus::kNoMemory, 0},
      {"the largest", INT32_MAX, DictionaryStatus::kNoMemory, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    Prepare(settings);
    settings.NumKeywords = c.numKeywords;
    const DictionaryResult result = LoadOf("a 1 0\nb 2 0\n", settings);
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.entries, c.entries);
  }
}

TEST(Dictionary, LineWithoutBlankIsCorrupt) {
  Settings settings;
  Prepare(settings);
  const struct {
    const char* what;
    std::string bytes;
    int32_t entries;  // ahead of the line
  } cases[] = {
      {"the first line", "run\nwalk 50 0\n", 0},
      {"the third line", "run 40 0\nwalk 50 0\nswim\n", 2},
      {"behind variants", "run 40 1\nruns\nswim\n", 1},
      {"an empty line", "run 40 0\n\n", 1},
      {"with a carriage return", "run 40 0\nswim\r\n", 1},
      {"a NUL before the blank", "run\0 40 0\n"s, 0},
      {"a tab is no blank", "run\t40\t0\n", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const DictionaryResult result = LoadOf(c.bytes, settings);
    EXPECT_EQ(result.status, DictionaryStatus::kCorruptEntry);
    EXPECT_EQ(result.entries, c.entries);
  }
}

TEST(Dictionary, BaseWordBlock) {
  Settings settings;
  Prepare(settings);
  const std::string bytes = "ab 1 0\ncd 2 0\n";  // 3 bytes each, with the NUL
  settings.OutputBasewordBufferSize = 6;
  EXPECT_EQ(LoadOf(bytes, settings).status, DictionaryStatus::kOk);
  settings.OutputBasewordBufferSize = 5;
  EXPECT_EQ(LoadOf(bytes, settings).status, DictionaryStatus::kBaseWordBlockFull);
}

TEST(Dictionary, BaseWordBlockOfNoSize) {
  Settings settings;
  Prepare(settings);
  for (int32_t size : {0, -1, INT32_MIN}) {
    SCOPED_TRACE(size);
    settings.OutputBasewordBufferSize = size;
    EXPECT_EQ(LoadOf("ab 1 0\n", settings).status, DictionaryStatus::kNoBaseWordBlock);
  }
}

TEST(Dictionary, VariantBlock) {
  Settings settings;
  Prepare(settings);
  const std::string bytes = "run 40 2\nab\ncde\n";  // 4 and 5 bytes with length and NUL
  settings.OutputVariantBufferSize = 9;
  EXPECT_EQ(LoadOf(bytes, settings).status, DictionaryStatus::kOk);
  settings.OutputVariantBufferSize = 8;
  EXPECT_EQ(LoadOf(bytes, settings).status, DictionaryStatus::kVariantBlockFull);
}

TEST(Dictionary, VariantBlockOfOneHundredVariantsHasOneThousandBytes) {
  Settings settings;
  Prepare(settings);
  settings.OutputVariantBufferSize = 0;
  settings.NumVariants = 100;
  // Eight characters take ten bytes.
  EXPECT_EQ(LoadOf("run 40 100\n" + Repeat("abcdefgh\n", 100), settings).status,
            DictionaryStatus::kOk);
  EXPECT_EQ(LoadOf("run 40 100\n" + Repeat("abcdefgh\n", 99) + "abcdefghi\n", settings).status,
            DictionaryStatus::kVariantBlockFull);
}

TEST(Dictionary, VariantBlockSizes) {
  const struct {
    const char* what;
    int32_t blockSize;
    int32_t numVariants;
    bool accepted;
  } cases[] = {
      {"no variants at all", 0, 0, true},
      {"a negative block", -1, 5, false},
      {"a negative count", 0, -1, false},
      {"a negative count that does not matter", 10, -1, true},
      {"the largest block", INT32_MAX, 0, true},
      {"the largest count whose block fits", 0, 214748364, true},
      {"one more", 0, 214748365, false},
      {"the largest count", 0, INT32_MAX, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    Prepare(settings);
    settings.OutputVariantBufferSize = c.blockSize;
    settings.NumVariants = c.numVariants;
    EXPECT_EQ(LoadOf("run 40 0\n", settings).status,
              c.accepted ? DictionaryStatus::kOk : DictionaryStatus::kNoVariantBlock);
  }
}

TEST(Dictionary, FileMissing) {
  OpenDirectory site;
  Settings settings;
  Prepare(settings);
  Dictionary dictionary;
  EXPECT_EQ(dictionary.Load(site.directory, settings, kNoLookup).status,
            DictionaryStatus::kCannotOpen);
}

TEST(Dictionary, ReadFromItsFile) {
  OpenDirectory site;
  site.Write("vela_dictionary.vdat", "run 40 1\nruns\n");
  Settings settings;
  Prepare(settings);
  Dictionary dictionary;
  ASSERT_EQ(dictionary.Load(site.directory, settings, kNoLookup).status, DictionaryStatus::kOk);
  ASSERT_EQ(dictionary.size(), 1);
  EXPECT_EQ(dictionary.WordAt(0), "run");
  dictionary.Release();
  EXPECT_EQ(dictionary.size(), 0);
}

TEST(Dictionary, EmptyFile) {
  OpenDirectory site;
  site.Write("vela_dictionary.vdat", "");
  Settings settings;
  Prepare(settings);
  Dictionary dictionary;
  ASSERT_EQ(dictionary.Load(site.directory, settings, kNoLookup).status, DictionaryStatus::kOk);
  EXPECT_EQ(dictionary.size(), 0);
  EXPECT_EQ(dictionary.FindExact("run", 0), -1);
}

TEST(Dictionary, FailedTableAllocation) {
  Settings settings;
  Prepare(settings);
  Dictionary dictionary;
  g_failAllocationNumber = 1;
  EXPECT_EQ(dictionary.Load("run 40 0\n", settings, kNoLookup).status, DictionaryStatus::kNoMemory);
  g_failAllocationNumber = 0;
}

TEST(Dictionary, FindExact) {
  const std::string bytes =
      "a 1 0\nab 2 0\nabcdefgh 3 0\nabcdefghi 4 0\nabcdefgh1 5 0\nab 6 0\nz 7 1\nzz\nlast 8 0\n";
  Settings settings;
  Prepare(settings);
  Dictionary dictionary;
  ASSERT_EQ(dictionary.Load(bytes, settings, kNoLookup).status, DictionaryStatus::kOk);
  const struct {
    const char* what;
    std::string word;
    int32_t from;
    int32_t expected;
  } cases[] = {
      {"a word of one letter is no beginning", "a", 0, 0},
      {"the first of two", "ab", 0, 1},
      {"the second of two", "ab", 2, 5},
      {"eight letters", "abcdefgh", 0, 2},
      {"nine letters", "abcdefghi", 0, 3},
      {"nine letters, another end", "abcdefgh1", 0, 4},
      {"the last word of the file", "last", 0, 7},
      {"from itself on", "last", 7, 7},
      {"behind the last", "last", 8, -1},
      {"other case", "AB", 0, -1},
      {"a variant is no word", "zz", 0, -1},
      {"only the beginning of a word", "abc", 0, -1},
      {"a word with its offset", "ab 2", 0, -1},
      {"an empty word", "", 0, -1},
      {"longer than the rest of the file", "lastlastlast", 0, -1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(dictionary.FindExact(c.word, c.from), c.expected);
  }
}

TEST(Dictionary, ListsWordsByHowTheyBegin) {
  const std::string bytes =
      "json 1 1\nJson\njson.load 2 1\njson.LOAD\nload 3 1\nJson-x\njson.a 4 0\nxjson.b 5 0\n";
  Settings settings;
  Prepare(settings);
  Dictionary dictionary;
  ASSERT_EQ(dictionary.Load(bytes, settings, kNoLookup).status, DictionaryStatus::kOk);
  const auto list = [&](std::string_view beginning, size_t room) {
    std::vector<uint32_t> numbers(room);
    numbers.resize(dictionary.ListByBeginning(beginning, numbers));
    return numbers;
  };
  // By the texts "json", "json-x", "json.a", "json.load"; spellings in other letters are none.
  EXPECT_EQ(list("json", 8), (std::vector<uint32_t>{0, 2, 3, 1}));
  EXPECT_EQ(list("json", 4), (std::vector<uint32_t>{0, 2, 3, 1}));
  EXPECT_EQ(list("json", 2), (std::vector<uint32_t>{0, 2}));
  EXPECT_EQ(list("JSON.", 8), (std::vector<uint32_t>{3, 1}));
  EXPECT_EQ(list("load", 8), (std::vector<uint32_t>{2}));
  EXPECT_EQ(list("b", 8), std::vector<uint32_t>());
  EXPECT_EQ(list("json", 0), std::vector<uint32_t>());
  EXPECT_EQ(list("", 8), std::vector<uint32_t>());
  EXPECT_EQ(list(std::string(300, 'j'), 8), std::vector<uint32_t>());
}

TEST(Dictionary, DisplayTextByVariantNumber) {
  const std::string bytes = "run 40 3\nRun\n\nRUN\nwalk 50 0\n";
  Settings settings;
  Prepare(settings);
  Dictionary dictionary;
  ASSERT_EQ(dictionary.Load(bytes, settings, kNoLookup).status, DictionaryStatus::kOk);
  EXPECT_EQ(dictionary.DisplayText(0, 0), "run");
  EXPECT_EQ(dictionary.DisplayText(0, 1), "Run");
  EXPECT_EQ(dictionary.DisplayText(0, 2), "RUN");  // the empty line is not stored
  EXPECT_EQ(dictionary.DisplayText(0, 3), "run");  // beyond the stored ones
  EXPECT_EQ(dictionary.DisplayText(0, 255), "run");
  EXPECT_EQ(dictionary.DisplayText(1, 1), "walk");
}

}  // namespace
}  // namespace vela
