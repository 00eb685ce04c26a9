#include "inspector/check/check_index.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "format/checksum.h"
#include "format/word_map.h"
#include "index/byte_cursor.h"
#include "support/inspected_site.h"

namespace vela::inspector {
namespace {

// The damage is worth little where the whole index lacks a file.
TEST(CheckIndex, FindsNothingInAWholeIndex) {
  const InspectedSite site;
  for (const std::string_view name : kIndexFileNames) {
    EXPECT_NE(FullSiteFiles().count(std::string(name)), 0u) << name;
  }
  const Findings findings = site.Check();
  EXPECT_EQ(findings.count(), 0u) << ReportText(findings);
  EXPECT_FALSE(findings.isUnusable());
}

// What the changes of a test need to know of the whole index.
struct Known {
  std::unique_ptr<OpenedIndex> index;

  uint32_t Word(std::string_view word) const {
    const int32_t number = index->dictionary.FindExact(word, 0);
    EXPECT_GE(number, 0) << word;
    return static_cast<uint32_t>(number);
  }
  // Where the records of the word's list begin in the word map.
  size_t Records(std::string_view word) const {
    const DictEntry entry = index->dictionary.EntryAt(static_cast<int32_t>(Word(word)));
    return static_cast<size_t>(entry.offset) + kWordListCountWidth;
  }
  size_t TokenSize() const { return static_cast<size_t>(index->settings.DictIDLen); }
};

void Put(std::string& bytes, size_t at, uint64_t number, size_t width) {
  ASSERT_LE(at + width, bytes.size());
  memcpy(bytes.data() + at, &number, width);
}

void Replace(std::string& bytes, std::string_view from, std::string_view to) {
  const size_t at = bytes.find(from);
  ASSERT_NE(at, bytes.npos) << from;
  bytes.replace(at, from.size(), to);
}

// Writes the checksum of a block of the lookup file anew.
void Seal(std::string& bytes, size_t at) {
  const size_t block = at / kLookupBlockSize;
  const std::string_view room(bytes.data() + block * kLookupBlockSize, kLookupBlockRoom);
  Put(bytes, block * kLookupBlockSize + kLookupBlockRoom, Checksum(room, block), 8);
}

struct SortedBytes {
  char bytes[kLookupBlockRoom];
};

template <typename Record>
size_t LookupPlace(LookupTablePlace LookupHeader::*table, const std::string& bytes, size_t i) {
  LookupHeader header;
  memcpy(&header, bytes.data(), sizeof header);
  constexpr size_t kPerBlock = kLookupRecordsPerBlock<Record>;
  const size_t block = (header.*table).firstBlock + i / kPerBlock;
  return block * kLookupBlockSize + i % kPerBlock * sizeof(Record);
}

// Puts the checksum of the only block of sections right.
void SealSections(std::string& bytes) {
  SectionsHeader header;
  memcpy(&header, bytes.data(), sizeof header);
  const size_t at = sizeof header + static_cast<size_t>(header.blockBytes);
  const std::string_view block(bytes.data() + sizeof header, at - sizeof header);
  SectionGuide guide;
  memcpy(&guide, bytes.data() + at, sizeof guide);
  Put(bytes, at + offsetof(SectionGuide, sum), SectionBlockSum(block, guide.position, UINT64_MAX),
      4);
}

struct DamageCase {
  const char* what;
  const char* file;  // that is changed
  std::function<void(std::string& bytes, const Known& known)> change;
  Fault fault;
  const char* blamed = nullptr;  // the file of the finding; null: the one that is changed
};

constexpr char kSettings[] = "settings.vdat";
constexpr char kWords[] = "vela_dictionary.vdat";
constexpr char kMap[] = "vela_wordmap.vdat";
constexpr char kText[] = "vela_pagetext.vdat";
constexpr char kInfo[] = "vela_pageinfo.vdat";
constexpr char kData[] = "vela_pagedata.vdat";
constexpr char kSpellings[] = "vela_spelling.vdat";
constexpr char kTies[] = "vela_recommended.vdat";
constexpr char kOffers[] = "vela_autocomplete.vdat";
constexpr char kMeant[] = "vela_corrections.vdat";
constexpr char kStarts[] = "vela_completions.vdat";
constexpr char kOthers[] = "vela_synonyms.vdat";
constexpr char kParts[] = "vela_sections.vdat";
constexpr char kTables[] = "vela_lookup.vdat";
constexpr char kPage[] = "search_template.html";

// A change of one text, or of a number at a place.
auto Text(std::string_view from, std::string_view to) {
  return [=](std::string& bytes, const Known&) { Replace(bytes, from, to); };
}
auto Number(size_t at, uint64_t number, size_t width) {
  return [=](std::string& bytes, const Known&) { Put(bytes, at, number, width); };
}
auto Appended(std::string_view text) {
  return [=](std::string& bytes, const Known&) { bytes.append(text); };
}
auto CutBy(size_t count) {
  return [=](std::string& bytes, const Known&) { bytes.resize(bytes.size() - count); };
}
// A byte of the first section.
auto SectionByte(size_t at, uint64_t byte) {
  return [=](std::string& bytes, const Known&) {
    Put(bytes, sizeof(SectionsHeader) + at, byte, 1);
    SealSections(bytes);
  };
}
auto Cleared() {
  return [](std::string& bytes, const Known&) { bytes.clear(); };
}
// A number in the first record of a word's list.
auto Record(std::string_view word, size_t offset, uint64_t number, size_t width) {
  return [=](std::string& bytes, const Known& known) {
    Put(bytes, known.Records(word) + offset, number, width);
  };
}

constexpr size_t kCorrectionGroupsAt = 16;
constexpr size_t kSynonymKeysAt = sizeof(SynonymHeader);

const DamageCase kCases[] = {
    // Settings.
    {"a width that no reader takes", kSettings, Text("DictIDLen = ", "DictIDLen = 9\nX"),
     Fault::kUnreadable},
    {"a switch of 7", kSettings, Text("Highlighting = 1", "Highlighting = 7"), Fault::kOutOfRange},
    {"a word for a number", kSettings, Text("MaxMatches = ", "MaxMatches = many "),
     Fault::kNoNumber},
    {"a key that is written wrong", kSettings, Text("MaxMatches", "MaxMatchs"), Fault::kUnknownKey},
    {"a key twice", kSettings, Appended("Timing = 1\n"), Fault::kRepeated},
    {"a text without quotes", kSettings, Text("STR_OR = \"", "STR_OR = "), Fault::kWrongForm},
    {"a text of the page missing", kSettings, Text("STR_OR", "STR_CORRECTED_TO"),
     Fault::kMissingText},
    {"broken UTF-8", kSettings, Text("STR_OR = \"", "STR_OR = \"\xFF"), Fault::kBadText},
    {"a text that is cut", kSettings,
     [](std::string& bytes, const Known&) {
       Replace(bytes, "LogFileName = \"", "LogFileName = \"" + std::string(300, 'x'));
     },
     Fault::kTooLong},
    {"a category without a name", kSettings, Text("\nNews\n", "\n\n"), Fault::kWrongForm},
    {"more categories than names", kSettings, Text("NumCats = 2", "NumCats = 900"),
     Fault::kWrongCount},
    {"reserved classes out of order", kSettings,
     Text("DictReservedSuffixes = ", "DictReservedSuffixes = 9"), Fault::kWrongOrder},
    // Dictionary.
    {"a line without a blank", kWords, Text("\ncat ", "\ncat_"), Fault::kUnreadable},
    {"a word in capitals", kWords, Text("\nkitten ", "\nKITTEN "), Fault::kWrongForm},
    {"a word twice", kWords, Text("\nkitten ", "\nyoung "), Fault::kRepeated},
    {"no UTF-8", kWords, Text("\nkitten ", "\nkitte\xFF "), Fault::kBadText},
    {"a word missing", kWords, Text("\nkitten ", "\n kitten "), Fault::kWrongForm},
    {"fewer words than NumKeywords", kSettings, Text("NumKeywords = ", "NumKeywords = 1"),
     Fault::kWrongCount, kWords},
    {"room for fewer bytes", kSettings,
     Text("OutputBasewordBufferSize = ", "OutputBasewordBufferSize = 9\nOutput"),
     Fault::kUnreadable, kWords},
    {"a last line that is cut", kWords, CutBy(1), Fault::kWrongForm},
    // Word map.
    {"a score of 0", kMap, Record("kitten", 0, 0, 1), Fault::kBadScore},
    {"no block", kMap, Record("kitten", 1, 0, 1), Fault::kNoBlock},
    {"a page that is none", kMap, Record("kitten", 2, 60000, 3), Fault::kUnknownPage},
    {"pages out of order", kMap, Record("cat", 2, 3, 3), Fault::kWrongOrder},
    {"another page", kMap, Record("kitten", 2, 2, 3), Fault::kMisplaced},
    {"a place between two tokens", kMap,
     [](std::string& bytes, const Known& known) {
       const size_t at = known.Records("kitten") + kWordMapPositionOffset;
       bytes[at] = static_cast<char>(bytes[at] + 1);
     },
     Fault::kMisplaced},
    {"a place behind the first", kMap,
     [](std::string& bytes, const Known& known) {
       const size_t at = known.Records("pet") + kWordMapPositionOffset;
       bytes[at] = static_cast<char>(bytes[at] + 2 * static_cast<char>(known.TokenSize()));
     },
     Fault::kNotFirst},
    {"a word that finds one page less", kMap,
     [](std::string& bytes, const Known& known) {
       Put(bytes, known.Records("kitten") - kWordListCountWidth, 0, kWordListCountWidth);
     },
     Fault::kNotListed},
    {"bytes of no list", kMap, Appended("abc"), Fault::kUnclaimed},
    {"a list that ends behind the file", kMap, CutBy(3), Fault::kBeyondEnd},
    {"a list inside another", kWords,
     [](std::string& bytes, const Known& known) {
       const DictEntry cat =
           known.index->dictionary.EntryAt(static_cast<int32_t>(known.Word("cat")));
       const DictEntry kitten =
           known.index->dictionary.EntryAt(static_cast<int32_t>(known.Word("kitten")));
       Replace(bytes, "\nkitten " + std::to_string(kitten.offset),
               "\nkitten " + std::to_string(cat.offset));
     },
     Fault::kMisplaced, kMap},
    {"a word of a title that weighs nothing", kInfo,
     [](std::string& bytes, const Known&) {
       const size_t length = ReadLittleEndian(bytes, 0, 2);
       Put(bytes, length - 2, 0, 2);
     },
     Fault::kBadWeight},
    // Page text.
    {"a number of no word", kText,
     [](std::string& bytes, const Known& known) { Put(bytes, 0, 250, known.TokenSize() - 1); },
     Fault::kUnknownWord},
    {"a spelling that is none", kText,
     [](std::string& bytes, const Known& known) { Put(bytes, known.TokenSize() - 1, 200, 1); },
     Fault::kUnknownVariant},
    {"a token that is cut", kText, CutBy(1), Fault::kWrongSize},
    {"no end of the last page", kText,
     [](std::string& bytes, const Known& known) { bytes.resize(bytes.size() - known.TokenSize()); },
     Fault::kWrongForm},
    {"another page end", kText,
     [](std::string& bytes, const Known& known) { Put(bytes, 0, 0, known.TokenSize()); },
     Fault::kWrongCount},
    // Pages.
    {"a record that is too long", kInfo, Number(0, 60000, 2), Fault::kUnreadable},
    {"records behind the last", kInfo, Appended("xyz"), Fault::kWrongSize},
    {"a line that does not begin there", kInfo, Number(2, 1, 5), Fault::kBadReference},
    {"a category that does not exist", kInfo, Number(17, 0x80, 1), Fault::kBadCategory},
    {"a value that is none of the list", kInfo, Number(18 + 4, 9, 1), Fault::kBadField},
    {"a text that does not end", kInfo,
     [](std::string& bytes, const Known&) { Replace(bytes, std::string("Ann\0", 4), "Ann."); },
     Fault::kBadField},
    {"a line without its fields", kData, Text("|Cats|", "-Cats-"), Fault::kWrongForm},
    {"a tag in a title", kData, Text("|Cats|", "|<b>s|"), Fault::kUnsafeText},
    {"a control character", kData, Text("|Cats|", "|C\x1Bts|"), Fault::kBadText},
    {"two pages of one address", kData, Text("news/dogs.html", "guide.html\0\0\0\0"),
     Fault::kRepeated},
    {"a line of nobody", kData, Appended("a|b|c||\n"), Fault::kUnclaimed},
    {"an address that is too long", kData,
     [](std::string& bytes, const Known&) {
       bytes.insert(bytes.rfind("https://shop"), std::string(3000, 'h'));
     },
     Fault::kTooLong},
    {"no address", kData, Text("https://shop.example/|", "|"), Fault::kWrongForm},
    // Beside them.
    {"a recommended page that is none", kTies, Text("cats ", "cats 1"), Fault::kBadReference},
    {"keywords alone", kTies, Text("cats ", "cats,"), Fault::kWrongForm},
    {"one more than NumRecommended", kTies, Appended("cat 0\n"), Fault::kWrongCount},
    {"a spelling key out of order", kSpellings,
     [](std::string& bytes, const Known&) { bytes[0] = 'Z'; }, Fault::kWrongOrder},
    {"a spelling of no word", kSpellings,
     [](std::string& bytes, const Known&) { bytes.insert(bytes.find(' ') + 1, "99999"); },
     Fault::kUnknownWord},
    {"a word that sounds otherwise", kSpellings,
     [](std::string& bytes, const Known& known) {
       Replace(bytes, " " + std::to_string(known.Word("kitten")),
               " " + std::to_string(known.Word("hound")));
     },
     Fault::kOtherContent},
    {"fewer keys than NumSpellings", kSettings, Text("NumSpellings = ", "NumSpellings = 9"),
     Fault::kWrongCount, kSpellings},
    {"a suggestion twice", kOffers,
     [](std::string& bytes, const Known&) { bytes += bytes.substr(0, bytes.find('\n') + 1); },
     Fault::kRepeated},
    {"a suggestion with a tag", kOffers, [](std::string& bytes, const Known&) { bytes[0] = '<'; },
     Fault::kUnsafeText},
    {"suggestions that are longer than lines", kOffers,
     [](std::string& bytes, const Known&) { bytes.insert(0, std::string(400, 'x')); },
     Fault::kTooLong},
    {"corrections of another size", kMeant, CutBy(1), Fault::kUnreadable},
    {"groups out of order", kMeant, Number(kCorrectionGroupsAt + 4 * 6, 60000, 4),
     Fault::kWrongOrder},
    {"another set of letters", kMeant, Number(sizeof(CorrectionHeader), 1U << 25, 4),
     Fault::kOtherContent},
    {"completions of another size", kStarts, CutBy(1), Fault::kUnreadable},
    {"completions of other suggestions", kOffers, Appended("zebra\n"), Fault::kOtherFile, kStarts},
    {"a completion of no line", kStarts, Number(sizeof(CompletionsHeader), 1, 4),
     Fault::kBadReference},
    {"synonyms of another size", kOthers, Appended("x"), Fault::kUnreadable},
    {"fewer synonyms than Synonyms", kSettings, Text("Synonyms = ", "Synonyms = 1"),
     Fault::kWrongCount, kOthers},
    {"a key behind the texts", kOthers, Number(kSynonymKeysAt, 60000, 4), Fault::kBeyondEnd},
    {"sections of another size", kParts, CutBy(1), Fault::kUnreadable},
    {"sections of another index", kParts, Number(8, 77, 8), Fault::kOtherFile},
    {"a block of sections that was changed", kParts, Number(sizeof(SectionsHeader), 1, 1),
     Fault::kBadChecksum},
    {"a section of another page", kParts, SectionByte(0, 0x7F), Fault::kMisplaced},
    {"sections that do not end", kParts,
     // The last one has no anchor; now it has one of a letter.
     [](std::string& bytes, const Known&) {
       SectionsHeader header;
       memcpy(&header, bytes.data(), sizeof header);
       const size_t end = sizeof header + static_cast<size_t>(header.blockBytes);
       bytes.replace(end - 1, 1, std::string("\1\0\0x", 4));
       Put(bytes, offsetof(SectionsHeader, blockBytes), header.blockBytes + 3, 8);
       SealSections(bytes);
     },
     Fault::kMisplaced},
    {"blocks of sections out of order", kParts,
     [](std::string& bytes, const Known&) {
       Put(bytes, offsetof(SectionsHeader, count), 2, 8);
       bytes.append(sizeof(SectionGuide), '\0');
     },
     Fault::kWrongOrder},
    {"a heading behind the texts", kParts, SectionByte(2, 0x7F), Fault::kBeyondEnd},
    // Lookup.
    {"a block that was changed", kTables, Number(kLookupBlockSize + 8, 0xFFFF, 2),
     Fault::kBadChecksum},
    {"a lookup file of another index", kSettings,
     Text("LookupGeneration = ", "LookupGeneration = 1\nX"), Fault::kOtherFile, kTables},
    {"a lookup file that nobody asks for", kSettings,
     Text("LookupGeneration = ", "LookupGeneration = 0\nX"), Fault::kNotUsed, kTables},
    {"another dictionary", kWords, Text("\nkitten ", "\nkittem "), Fault::kOtherFile, kTables},
    {"a word that begins elsewhere", kTables,
     [](std::string& bytes, const Known&) {
       const size_t at = LookupPlace<LookupWordStarts>(&LookupHeader::wordStarts, bytes, 1);
       Put(bytes, at, 3, 4);
       Seal(bytes, at);
     },
     Fault::kOtherContent},
    {"a sorted word that is none", kTables,
     [](std::string& bytes, const Known&) {
       // The first byte that is added to no other text.
       const size_t at = LookupPlace<SortedBytes>(&LookupHeader::sortedWords, bytes, 0) + 2;
       Put(bytes, at, '~', 1);
       Seal(bytes, at);
     },
     Fault::kOtherContent},
    {"the text of a page elsewhere", kTables,
     [](std::string& bytes, const Known&) {
       const size_t at = LookupPlace<LookupText>(&LookupHeader::texts, bytes, 1);
       Put(bytes, at, 3, 5);
       Seal(bytes, at);
     },
     Fault::kOtherContent},
    {"words that do not stand side by side", kTables,
     [](std::string& bytes, const Known&) {
       const size_t at = LookupPlace<WordPairs>(&LookupHeader::pairs, bytes, 0);
       for (size_t i = 0; i < sizeof(WordPairs); ++i) Put(bytes, at + i, 0, 1);
       Seal(bytes, at);
     },
     Fault::kOtherContent},
    {"a guide that leads astray", kTables,
     [](std::string& bytes, const Known&) {
       const size_t at = LookupPlace<LookupSpelling>(&LookupHeader::spellingGuide, bytes, 0);
       Put(bytes, at, 7, 8);
       Seal(bytes, at);
     },
     Fault::kOtherContent},
    {"a page without a place for results", kPage, Cleared(), Fault::kMissingMarker},
};

TEST(CheckIndex, FindsEachKindOfDamage) {
  const InspectedSite site;
  const Known known = {site.Open()};
  for (const DamageCase& c : kCases) {
    SCOPED_TRACE(c.what);
    const std::string& whole = FullSiteFiles().at(c.file);
    std::string bytes = whole;
    c.change(bytes, known);
    site.Write(c.file, bytes);
    const Findings findings = site.Check();
    const char* blamed = c.blamed != nullptr ? c.blamed : c.file;
    EXPECT_NE(findings.CountOf(c.fault, blamed), 0u)
        << RowOf(c.fault).code << " in " << blamed << "\n"
        << ReportText(findings);
    site.Write(c.file, whole);
  }
  const Findings findings = site.Check();
  EXPECT_EQ(findings.count(), 0u) << ReportText(findings);
}

TEST(CheckIndex, MissesAFile) {
  const InspectedSite site;
  for (const auto& [name, bytes] : FullSiteFiles()) {
    SCOPED_TRACE(name);
    site.Remove(name);
    const Findings findings = site.Check();
    const bool mayBeAbsent = name == kParts || name == kMeant || name == kStarts;
    const bool isRead = name == kPage || IsIndexFileName(name);
    EXPECT_EQ(findings.count() == 0, mayBeAbsent || !isRead) << ReportText(findings);
    site.Write(name, bytes);
  }
}

TEST(CheckIndex, TellsWhetherTheProgramCanAnswer) {
  const struct {
    const char* file;
    bool isUnusable;
  } cases[] = {{kSettings, true}, {kWords, true},   {kMap, true},     {kText, true},
               {kInfo, true},     {kData, true},    {kTies, true},    {kSpellings, true},
               {kOffers, false},  {kTables, false}, {kOthers, false}, {kPage, false}};
  const InspectedSite site;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    site.Remove(c.file);
    EXPECT_EQ(site.Check().isUnusable(), c.isUnusable);
    site.Write(c.file, FullSiteFiles().at(c.file));
  }
}

// Whatever the bytes are, the check ends; where the file is one that is cut, it says so.
TEST(CheckIndex, EndsOnFilesThatAreCutAnywhere) {
  const InspectedSite site;
  for (const auto& [name, bytes] : FullSiteFiles()) {
    if (!IsIndexFileName(name)) continue;
    SCOPED_TRACE(name);
    const size_t step = bytes.size() / 40 + 1;
    for (size_t length = 0; length < bytes.size(); length += step) {
      site.Write(name, std::string_view(bytes).substr(0, length));
      EXPECT_NE(site.Check(1).count(), 0u) << "cut to " << length;
    }
    site.Write(name, bytes);
  }
}

TEST(CheckIndex, EndsOnBytesThatAreChangedAnywhere) {
  const InspectedSite site;
  for (const auto& [name, whole] : FullSiteFiles()) {
    if (!IsIndexFileName(name)) continue;
    SCOPED_TRACE(name);
    const size_t step = whole.size() / 60 + 1;
    for (size_t at = 0; at < whole.size(); at += step) {
      std::string bytes = whole;
      bytes[at] = static_cast<char>(~bytes[at]);
      site.Write(name, bytes);
      const Findings findings = site.Check(1);
      // Any change of a file that the lookup file was made from is seen, as they are small.
      const bool isSampled = name == kWords || name == kText || name == kInfo ||
                             name == kSpellings || name == kOffers || name == kTables;
      EXPECT_TRUE(findings.count() != 0 || !isSampled) << "byte " << at;
    }
    site.Write(name, whole);
  }
}

TEST(Findings, KeepsSomeOfAKindAndCountsAll) {
  Findings findings(2);
  for (uint64_t i = 0; i < 5; ++i) findings.Add(Fault::kBadScore, kWordMapFileName, Byte(i), "x");
  findings.Add(Fault::kBadScore, kSynonymsFileName, Byte(9), "y");
  EXPECT_EQ(findings.count(), 6u);
  EXPECT_EQ(findings.kept().size(), 3u);
  EXPECT_EQ(findings.CountOf(Fault::kBadScore, kWordMapFileName), 5u);
  JsonText json;
  json.BeginObject();
  WriteFindings(findings, json);
  json.EndObject();
  EXPECT_NE(json.text().find("{\"file\":\"vela_wordmap.vdat\",\"fault\":\"bad_score\","
                             "\"count\":5}"),
            std::string::npos)
      << json.text();
}

}  // namespace
}  // namespace vela::inspector
