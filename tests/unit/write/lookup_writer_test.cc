#include "indexer/write/lookup_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "format/index_directory.h"
#include "format/lookup.h"
#include "index/autocomplete.h"
#include "index/dictionary.h"
#include "index/spelling.h"
#include "index/text_pairs.h"
#include "support/loaded_site.h"
#include "support/recipe.h"
#include "text/wildcard.h"

namespace vela::indexer {
namespace {

using support::kNoLookup;
using support::OpenDirectory;
using support::ReadWholeFile;

constexpr TextShape kNoText = {.tokenBytes = 4, .lastSign = 3};

// Words that share their first letters with many others, differ in case alone, or do not at all.
std::string ManyWords() {
  std::string lines;
  size_t number = 0;
  const auto add = [&](const std::string& word, const std::vector<std::string>& variants = {}) {
    lines += word + " " + std::to_string(++number * 10) + " " + std::to_string(variants.size());
    lines += "\n";
    for (const std::string& variant : variants) lines += variant + "\n";
  };
  add("zebra", {"Zebra", "z\u00EBbra"});
  add("a");
  for (int i = 0; i < 3000; ++i) add("configuration" + std::to_string(i * 7 % 3001));
  for (int i = 0; i < 2000; ++i)
    add("w" + std::to_string(i * 13 % 2003), {"W" + std::to_string(i)});
  add("Mixed", {"mixed", "MIXED"});
  add("mixed", {"configurator"});
  add("12345678");
  add("1234567");
  add("123456789");
  add("\u00FCber", {"\u00DCber"});
  add("\xFF\xFE");
  add("a/b:c");
  // Of the longest texts that are taken only one fits into a block.
  for (const char last : {'d', 'b', 'c', 'a'}) add(std::string(254, 'y') + last);
  add(std::string(200, 'y'), {std::string(200, 'Y') + "es"});
  return lines;
}

Settings SettingsOf() {
  Settings settings;
  settings.NumKeywords = 100000;
  settings.OutputBasewordBufferSize = 1000000;
  settings.OutputVariantBufferSize = 1000000;
  settings.NumSpellings = 100000;
  settings.MaxKeyWordLineLen = 256;
  return settings;
}

// A directory with a dictionary, read with its lookup file and without.
struct TwoDictionaries {
  OpenDirectory site;
  Settings settings = SettingsOf();
  LookupFile lookup;
  Dictionary fast;
  Dictionary plain;

  explicit TwoDictionaries(const std::string& words) {
    site.Write(kDictionaryFileName, words);
    settings.LookupGeneration = WriteLookup(site.scratch.path(), kNoText, UINT32_MAX).generation;
    Load();
  }
  void Load() {
    fast.Release();
    plain.Release();
    lookup.Open(site.directory, settings);
    EXPECT_EQ(fast.Load(site.directory, settings, lookup).status, DictionaryStatus::kOk);
    EXPECT_EQ(plain.Load(site.directory, settings, kNoLookup).status, DictionaryStatus::kOk);
  }
};

void ExpectSameEntries(const Dictionary& a, const Dictionary& b) {
  ASSERT_EQ(a.size(), b.size());
  for (int32_t i = 0; i < b.size(); ++i) {
    const DictEntry left = a.EntryAt(i);
    const DictEntry right = b.EntryAt(i);
    ASSERT_EQ(left.word, right.word);
    ASSERT_EQ(left.offset, right.offset);
    ASSERT_EQ(left.variantCount, right.variantCount);
    ASSERT_EQ(a.HasVariants(i), b.HasVariants(i));
    for (const int32_t variant : {0, 1, 2, 3}) {
      ASSERT_EQ(a.DisplayText(i, variant), b.DisplayText(i, variant));
    }
  }
}

TEST(Lookup, EntriesAreThoseOfAPass) {
  const TwoDictionaries both(ManyWords());
  ASSERT_TRUE(both.lookup.isOpen());
  ExpectSameEntries(both.fast, both.plain);
}

TEST(Lookup, EveryWordIsFoundWhereAPassFindsIt) {
  const TwoDictionaries both(ManyWords());
  std::set<std::string> words = {"none",
                                 "configuration",
                                 "configuration9999",
                                 "W0",
                                 "mixe",
                                 "MIXED",
                                 "1",
                                 "zebras",
                                 "~",
                                 "\x01",
                                 std::string(254, 'y'),
                                 std::string(255, 'y'),
                                 std::string(300, 'y')};
  for (int32_t i = 0; i < both.plain.size(); ++i) words.emplace(both.plain.WordAt(i));
  for (const std::string& word : words) {
    for (const int32_t from : {0, 2, 5001}) {
      ASSERT_EQ(both.fast.FindExact(word, from), both.plain.FindExact(word, from)) << word;
    }
  }
}

TEST(Lookup, BeginningsCollectWordsByTheirVariantsToo) {
  const TwoDictionaries both(ManyWords());
  for (const std::string beginning : {"c",
                                      "C",
                                      "configuration",
                                      "CONFIGURATION1",
                                      "configurat",
                                      "configurations",
                                      "w",
                                      "W1",
                                      "z",
                                      "z\u00EB",
                                      "mix",
                                      "1234567",
                                      "12345678",
                                      "123456789",
                                      "\xC3",
                                      "\xFF",
                                      "none",
                                      "~",
                                      "Yy",
                                      "configuration2999"}) {
    WordSet found;
    ASSERT_TRUE(both.fast.CollectByBeginning(beginning, found));
    for (int32_t i = 0; i < both.plain.size(); ++i) {
      bool begins = false;
      for (int32_t variant = 0; variant <= both.plain.EntryAt(i).variantCount; ++variant) {
        begins =
            begins || MatchesWildcard(both.plain.DisplayText(i, variant), beginning + "*", true);
      }
      ASSERT_EQ(NextInSet(found, i, i + 1) == i, begins) << beginning << " " << i;
    }
  }
  WordSet found;
  EXPECT_FALSE(both.fast.CollectByBeginning("", found));
  EXPECT_FALSE(both.plain.CollectByBeginning("c", found));
}

TEST(Lookup, PiecesCollectAtLeastTheWordsThatHoldThem) {
  const TwoDictionaries both(ManyWords());
  for (const std::string piece :
       {"9", "99", "RATION2", "ixe", "W", "\u00DC", "\xFE", "/b:", "zz"}) {
    for (const Dictionary* dictionary : {&both.fast, &both.plain}) {
      WordSet found;
      ASSERT_TRUE(dictionary->CollectByPiece(piece, found));
      size_t others = 0;
      for (int32_t i = 0; i < both.plain.size(); ++i) {
        bool holds = false;
        for (int32_t variant = 0; variant <= both.plain.EntryAt(i).variantCount; ++variant) {
          const std::string pattern = "*" + piece + "*";
          holds = holds || MatchesWildcard(both.plain.DisplayText(i, variant), pattern, true);
        }
        const bool isFound = NextInSet(found, i, i + 1) == i;
        ASSERT_TRUE(isFound || !holds) << piece << " " << i;
        others += isFound && !holds ? 1 : 0;
      }
      // Those whose numbers hold the digits.
      if (piece.find('9') == piece.npos) {
        EXPECT_EQ(others, 0u) << piece;
      }
    }
  }
}

TEST(Lookup, ADamagedBlockSendsTheReaderOnAPass) {
  const TwoDictionaries made(ManyWords());
  const std::filesystem::path path = made.site.scratch.path() / kLookupFileName;
  const std::string whole = ReadWholeFile(path);
  // Every block but the header, whose damage closes the file.
  for (size_t block = 1; block < whole.size() / kLookupBlockSize; block += 40) {
    SCOPED_TRACE(block);
    TwoDictionaries both(ManyWords());
    std::string bytes = whole;
    bytes[block * kLookupBlockSize + 17] ^= 1;
    both.site.Write(kLookupFileName, bytes);
    both.Load();
    ASSERT_TRUE(both.lookup.isOpen());
    for (int32_t i = 0; i < both.plain.size(); i += 5) {
      ASSERT_EQ(both.fast.FindExact(both.plain.WordAt(i), 0),
                both.plain.FindExact(both.plain.WordAt(i), 0));
    }
    ExpectSameEntries(both.fast, both.plain);
  }
}

TEST(Lookup, IsUsedWithItsOwnFilesOnly) {
  const std::string words = "run 40 1\nRun\nwalk 50 0\n";
  const struct {
    const char* what;
    std::string dictionary;
    int32_t otherGeneration;
    int32_t baseBytes;
    int32_t variantBytes;
    int32_t numKeywords;
    bool isUsed;
  } cases[] = {
      {"as it was made", words, 0, 9, 5, 2, true},
      {"a generation more", words, 1, 9, 5, 2, false},
      {"a dictionary of another length", words + "x 0 0\n", 0, 100, 5, 3, false},
      {"another of that length", "run 40 1\nRun\nwall 50 0\n", 0, 9, 5, 2, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenDirectory site;
    site.Write(kDictionaryFileName, words);
    Settings settings = SettingsOf();
    settings.LookupGeneration =
        WriteLookup(site.scratch.path(), kNoText, UINT32_MAX).generation + c.otherGeneration;
    settings.OutputBasewordBufferSize = c.baseBytes;
    settings.OutputVariantBufferSize = c.variantBytes;
    settings.NumKeywords = c.numKeywords;
    site.Write(kDictionaryFileName, c.dictionary);
    LookupFile lookup;
    lookup.Open(site.directory, settings);
    Dictionary dictionary;
    EXPECT_EQ(dictionary.Load(site.directory, settings, lookup).status, DictionaryStatus::kOk);
    WordSet found;
    EXPECT_EQ(dictionary.CollectByBeginning("r", found), c.isUsed);
  }
}

// The checks of a pass depend on the settings; the words there are do not.
TEST(Lookup, SettingsThatDoNotFitAreRefusedAsByAPass) {
  const std::string words = "run 40 1\nRun\nwalk 50 0\n";
  const struct {
    const char* what;
    int32_t Settings::*field;
    int32_t value;
    DictionaryStatus status;
  } cases[] = {
      {"no room for base words", &Settings::OutputBasewordBufferSize, 0,
       DictionaryStatus::kNoBaseWordBlock},
      {"one byte too few for base words", &Settings::OutputBasewordBufferSize, 8,
       DictionaryStatus::kBaseWordBlockFull},
      {"one byte too few for variants", &Settings::OutputVariantBufferSize, 4,
       DictionaryStatus::kVariantBlockFull},
      {"a word too many", &Settings::NumKeywords, 1, DictionaryStatus::kTooManyEntries},
      {"no words", &Settings::NumKeywords, -1, DictionaryStatus::kNoMemory},
      {"more words than fit", &Settings::NumKeywords, INT32_MAX, DictionaryStatus::kNoMemory},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    OpenDirectory site;
    site.Write(kDictionaryFileName, words);
    Settings settings = SettingsOf();
    settings.LookupGeneration = WriteLookup(site.scratch.path(), kNoText, UINT32_MAX).generation;
    settings.*c.field = c.value;
    LookupFile lookup;
    lookup.Open(site.directory, settings);
    ASSERT_TRUE(lookup.isOpen());
    Dictionary dictionary;
    EXPECT_EQ(dictionary.Load(site.directory, settings, lookup).status, c.status);
  }
}

TEST(Lookup, NothingIsWrittenForADictionaryOfAnotherForm) {
  const std::string tooLong(256, 'x');
  const std::vector<std::string> cases = {"",
                                          "run 40 0",
                                          "run\n",
                                          "run 40\n",
                                          " run 40 0\n",
                                          "run 40 0\n\n",
                                          "run x 0\n",
                                          "run 40 0 0\n",
                                          "run 40 1\n",
                                          "run 40 1\nR un\n",
                                          "run 40 1\n\n",
                                          "r\x01n 40 0\n",
                                          "run 40 0\r\n",
                                          tooLong + " 40 0\n",
                                          "run 40 1\n" + tooLong + "\n"};
  for (const std::string& words : cases) {
    SCOPED_TRACE(words);
    OpenDirectory site;
    site.Write(kDictionaryFileName, words);
    EXPECT_EQ(WriteLookup(site.scratch.path(), kNoText, UINT32_MAX).generation, 0);
    EXPECT_FALSE(std::filesystem::exists(site.scratch.path() / kLookupFileName));
  }
}

TEST(Lookup, SuggestionsThatBeginWithNoneOfTheWordsArePassedOver) {
  OpenDirectory site;
  site.Write(kDictionaryFileName, "run 40 0\n");
  std::string file = "apple\n\nApple pie\nbanana apple\nIce\nice\n\u0130ce\nbread\nBroth\n";
  for (int i = 0; i < 500; ++i) file += "word" + std::to_string(i) + " apple\n";
  file += "apple tart\nlast";
  site.Write(kAutoCompleteFileName, file);
  Settings settings = SettingsOf();
  settings.LookupGeneration = WriteLookup(site.scratch.path(), kNoText, UINT32_MAX).generation;
  LookupFile lookup;
  lookup.Open(site.directory, settings);
  const struct {
    std::vector<std::string_view> words;
    size_t most;  // suggestions that are still looked at
  } cases[] = {{{"app"}, 3},         {{"APP", "br"}, 5}, {{"ice"}, 1000}, {{"app", "i"}, 1000},
               {{"word49"}, 12},     {{"zz"}, 1},        {{"a"}, 3},      {{"banana "}, 2},
               {{"bi"}, 4},          {{"\u00FC"}, 1000}, {{}, 1000},      {{"las"}, 2},
               {{"apple", "app"}, 3}};
  for (const auto& c : cases) {
    const auto matching = [&](bool narrowed, size_t& looked) {
      SuggestionReader reader;
      EXPECT_EQ(reader.Open(site.directory, settings), LoadStatus::kOk);
      if (narrowed) reader.NarrowTo(c.words, true, lookup);
      std::string found;
      std::string_view text;
      while (reader.Next(text)) {
        ++looked;
        for (const std::string_view word : c.words) {
          if (PrefixMatches(text, word, true)) found += std::string(text) + "; ";
        }
      }
      return found;
    };
    size_t all = 0;
    size_t looked = 0;
    EXPECT_EQ(matching(true, looked), matching(false, all));
    EXPECT_EQ(all, 510u);
    EXPECT_LE(looked, c.most);
  }
}

TEST(Lookup, SuggestionsInPiecesAreAllLookedAt) {
  OpenDirectory site;
  site.Write(kDictionaryFileName, "run 40 0\n");
  site.Write(kAutoCompleteFileName, "banana apple\n");
  Settings settings = SettingsOf();
  settings.MaxKeyWordLineLen = 8;  // "banana " and "apple"
  settings.LookupGeneration = WriteLookup(site.scratch.path(), kNoText, UINT32_MAX).generation;
  LookupFile lookup;
  lookup.Open(site.directory, settings);
  const std::vector<std::string_view> words = {"app"};
  SuggestionReader reader;
  ASSERT_EQ(reader.Open(site.directory, settings), LoadStatus::kOk);
  reader.NarrowTo(words, true, lookup);
  std::string_view text;
  ASSERT_TRUE(reader.Next(text));
  ASSERT_TRUE(reader.Next(text));
  EXPECT_EQ(text, "apple");
}

// Words of the page text by their numbers: 1 ends a stretch, 0 a page; 2 and 3 are signs.
std::string TokensOf(const std::vector<std::vector<uint32_t>>& pages) {
  std::string tokens;
  for (const std::vector<uint32_t>& page : pages) {
    for (const uint32_t word : page) tokens += support::LittleEndian(word, 3) + '\x07';
    tokens += support::LittleEndian(0, 4);
  }
  return tokens;
}

TEST(Lookup, WordsBesideEachOtherAreKnown) {
  std::vector<uint32_t> many;
  for (uint32_t i = 0; i < 5000; ++i) many.push_back(10 + i * i % 4999);
  const std::string text =
      TokensOf({{10, 11, 2, 12, 3, 2, 13, 1, 14, 10}, {}, {4, 5, 6, 4}, many, {7, 8}});
  OpenDirectory site;
  site.Write(kDictionaryFileName, "run 40 0\n");
  site.Write(kPageTextFileName, text);
  Settings settings = SettingsOf();
  settings.DictIDLen = 4;
  settings.DictReservedLimit = 3;
  settings.LookupGeneration =
      WriteLookup(site.scratch.path(), {.tokenBytes = 4, .lastSign = 3}, 20000).generation;
  LookupFile lookup;
  lookup.Open(site.directory, settings);
  const TextPairs pairs(lookup, text, settings);
  const struct {
    const char* what;
    uint32_t page;
    uint64_t position;
    uint32_t first;
    uint32_t second;
    bool mayHold;
  } cases[] = {
      {"side by side", 0, 0, 10, 11, true},
      {"with a sign between", 0, 0, 11, 12, true},
      {"with two signs between", 0, 0, 12, 13, true},
      {"not the other way round", 0, 0, 11, 10, false},
      {"not with a word between", 0, 0, 10, 12, false},
      {"not across the end of a stretch", 0, 0, 13, 14, false},
      {"the last two of a page", 0, 0, 14, 10, true},
      {"not on another page", 2, 48, 10, 11, false},
      {"on the third", 2, 48, 5, 6, true},
      {"the last page", 4, 48 + 20 + 20004, 7, 8, true},
      {"the last page, not there", 4, 48 + 20 + 20004, 8, 7, false},
      {"a place of another page tells nothing", 0, 48, 11, 10, true},
      {"a page that is not there tells nothing", 5, 0, 11, 10, true},
      {"a text without pairs has none", 1, 44, 11, 10, false},
      {"a word on few pages tells nothing", 0, 0, 11, 20000, true},
      {"nor does it as the first", 0, 0, 20000, 11, true},
      {"the last of the others does", 0, 0, 11, 19999, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(pairs.MayHold(c.page, c.position, c.position, c.first, c.second), c.mayHold);
  }
  EXPECT_TRUE(pairs.MayHold(0, 0, 48, 11, 10)) << "the other place is one of another page";
  size_t wrong = 0;
  for (size_t i = 0; i + 1 < many.size(); ++i) {
    ASSERT_TRUE(pairs.MayHold(3, 68, 68, many[i], many[i + 1]));
    if (pairs.MayHold(3, 68, 68, many[i], 9000 + static_cast<uint32_t>(i))) ++wrong;
  }
  EXPECT_LT(wrong, many.size() / 20);  // one in 32 is to be expected
  settings.DictReservedLimit = 2;
  EXPECT_TRUE(TextPairs(lookup, text, settings).MayHold(0, 0, 0, 11, 10)) << "other signs";
  settings.DictReservedLimit = 3;
  std::string other = text;
  other[5] ^= 1;
  EXPECT_TRUE(TextPairs(lookup, other, settings).MayHold(0, 0, 0, 11, 10)) << "another text";
}

TEST(Lookup, SpellingEntriesFromAKeyOn) {
  OpenDirectory site;
  std::string spelling;
  std::vector<std::string> keys;
  for (char a = 'A'; a <= 'T'; ++a) {
    for (char b = 'A'; b <= 'T'; ++b) keys.push_back({a, b});
  }
  for (const std::string& key : keys) {
    spelling += key + " 1 22 333\n";
    if (key == "KK") spelling += "KK 4\nKK 5\n";
  }
  site.Write(kDictionaryFileName, "run 40 0\n");
  site.Write(kSpellingFileName, spelling);
  Settings settings = SettingsOf();
  settings.LookupGeneration = WriteLookup(site.scratch.path(), kNoText, UINT32_MAX).generation;
  LookupFile lookup;
  lookup.Open(site.directory, settings);
  SpellingTable table;
  ASSERT_EQ(LoadSpelling(table, site.directory, settings, lookup), LoadStatus::kOk);
  ASSERT_NE(table.lookup, nullptr);
  keys.insert(keys.end(), {"A", "AAA", "K", "KKK", "ZZZZZZ", ""});
  for (const std::string& key : keys) {
    const auto entriesFrom = [&key](SpellingReader reader) {
      std::string entries;
      SpellingEntry entry;
      while (reader.Next(entry)) {
        if (View(entry.key) < key) continue;
        entries += std::string(View(entry.key)) + " " + std::to_string(entry.words[0]) + "; ";
      }
      return entries;
    };
    EXPECT_EQ(entriesFrom(SpellingReader(table, key)), entriesFrom(SpellingReader(table))) << key;
  }
  SpellingEntry entry;
  ASSERT_TRUE(SpellingReader(table, "TT").Next(entry));
  EXPECT_GT(View(entry.key), "A") << "nothing was passed over";
}

}  // namespace
}  // namespace vela::indexer
