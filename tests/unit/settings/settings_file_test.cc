// settings_file_test.cc: the reader of the settings file.

#include "settings/settings_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include "settings/setting_keys.h"
#include "support/failing_allocation.h"
#include "support/scratch_directory.h"
#include "unit/settings/language_lines.h"

namespace vela {
namespace {

using namespace std::string_view_literals;

// The numbers that are not 0 without a line.
constexpr struct {
  std::string_view key;
  int32_t value;
} kNumberDefaults[] = {
    {"StemmingAlgo", 2},       {"HighlightLimit", 30},       {"DotNetUseFormTags", 1},
    {"MaxKeyWordLineLen", 32}, {"FileTypePluginStart", 4},   {"VelaInfo", 1},
    {"MaxSearchTime", 30},     {"MaxResultsPerQuery", 1000},
};

int32_t DefaultOf(const NumberSetting& setting) {
  for (const auto& each : kNumberDefaults) {
    if (each.key == setting.key) return each.value;
  }
  return 0;
}

struct TextCase {
  const char* key;
  std::string_view (*get)(const Settings& settings);
  std::string_view byDefault;
  size_t limit;        // the most characters it holds
  bool emptiedByLine;  // a line of the key empties it before its value is read
};

template <auto kField>
std::string_view Get(const Settings& settings) {
  return View(settings.*kField);
}

constexpr TextCase kTexts[] = {
    {"Charset", Get<&Settings::Charset>, "", 1023, false},
    {"DatePickerPath", Get<&Settings::DatePickerPath>, "", 2083, false},
    {"Version", Get<&Settings::Version>, "", 1023, false},
    {"LogFileName", Get<&Settings::LogFileName>, ".//logs//searchwords.log", 255, false},
    {"LinkTarget", Get<&Settings::LinkTarget>, "", 2047, false},
    {"WordJoinChars", Get<&Settings::WordJoinChars>, "", 1023, false},
    {"LinkBackURL", Get<&Settings::LinkBackURL>, "", 2047, true},
    {"XMLTitle", Get<&Settings::XMLTitle>, "", 1024, true},
    {"XMLDesc", Get<&Settings::XMLDesc>, "", 2000, true},
    {"XMLURL", Get<&Settings::XMLURL>, "", 2083, true},
    {"XMLXSLTURL", Get<&Settings::XMLXSLTURL>, "", 2083, true},
    {"XMLOpenSearchDescURL", Get<&Settings::XMLOpenSearchDescURL>, "", 2083, true},
    {"MetaMoneyCurrency", Get<&Settings::MetaMoneyCurrency>, "&#36;", 63, false},
    {"StopWords", Get<&Settings::StopWords>, "", 2000, false},
};
static_assert(std::size(kTexts) == std::size(kTextSettings));

constexpr char kTwoFields[] =
    "NumMetaFields = 2\nmetafields\n"
    "3\n colour \nColour:\t\n the extra \r\n1\n2\n red \n\tgreen\n"
    "0\nyear\nYear\n\tsince\n2\n7\n"
    "Timing = 1\n";

class SettingsFileTest : public testing::Test {
 protected:
  void TearDown() override { g_failAllocationNumber = 0; }

  // Reads `lines` followed by all language lines.
  SettingsStatus Read(std::string_view lines) {
    settings_ = std::make_unique<Settings>();
    return ReadSettings(*settings_, std::string(lines) + LanguageLines());
  }

  std::unique_ptr<Settings> settings_ = std::make_unique<Settings>();
};

TEST_F(SettingsFileTest, LanguageLinesAloneLeaveEveryDefault) {
  ASSERT_EQ(Read(""), SettingsStatus::kOk);
  for (const NumberSetting& setting : kNumberSettings) {
    EXPECT_EQ((*settings_).*setting.field, DefaultOf(setting)) << setting.key;
  }
  for (const auto& each : kNumberDefaults) {
    EXPECT_NE(FindNumberSetting(each.key), nullptr) << each.key;
  }
  for (const TextCase& c : kTexts) {
    SCOPED_TRACE(c.key);
    EXPECT_EQ(c.get(*settings_), c.byDefault);
  }
  EXPECT_EQ(View(settings_->linkBackSeparator), "?");
  EXPECT_EQ(settings_->categoryNames.size(), 0);
  EXPECT_TRUE(settings_->metaFields.empty());
  EXPECT_FALSE(settings_->hasAccentTable);
  EXPECT_TRUE(settings_->accents.empty());
}

// What becomes of the field, which held 3 before, when the file has this line. `%s` is the key.
struct IntegerLine {
  const char* what;
  std::string_view behindKey;
  int32_t expected;
};

TEST_F(SettingsFileTest, EveryIntegerKeyInEveryForm) {
  constexpr int32_t kKept = 3;
  const IntegerLine lines[] = {
      {"plain", " = 5\n", 5},
      {"zero", " = 0\n", 0},
      {"negative", " = -12\n", -12},
      {"tabs, several blanks and a carriage return", "\t =\t\t 5\r\n", 5},
      {"no blank behind the sign", " =5\n", 5},
      {"a plus and text behind", " = +5 pages\n", 5},
      {"saturates below", " = -99999999999\n", INT32_MIN},
      {"unreadable", " = five\n", kKept},
      {"nothing", " =\n", kKept},
      {"no sign", " 5\n", kKept},
      {"the sign at the key makes it another key", "=5\n", kKept},
      {"a longer key", "s = 5\n", kKept},
  };
  for (const auto& [name, field] : kNumberSettings) {
    SCOPED_TRACE(name);
    const std::string key(name);
    for (const IntegerLine& line : lines) {
      SCOPED_TRACE(line.what);
      ASSERT_EQ(Read(key + " = 3\n" + key + std::string(line.behindKey)), SettingsStatus::kOk);
      EXPECT_EQ((*settings_).*field, line.expected);
    }
    ASSERT_EQ(Read(key + " = 3\n " + key + " = 5\n"), SettingsStatus::kOk);
    EXPECT_EQ((*settings_).*field, kKept) << "a blank before the key does not fit the form";
    if (key == "DictIDLen") continue;  // has a greatest value
    ASSERT_EQ(Read(key + " = 99999999999\n"), SettingsStatus::kOk);
    EXPECT_EQ((*settings_).*field, INT32_MAX);
  }
}

TEST_F(SettingsFileTest, AnIntegerKeySetsNoOtherField) {
  for (const NumberSetting& setting : kNumberSettings) {
    SCOPED_TRACE(setting.key);
    ASSERT_EQ(Read(std::string(setting.key) + " = -77\n"), SettingsStatus::kOk);
    for (const NumberSetting& other : kNumberSettings) {
      const int32_t expected = other.key == setting.key ? -77 : DefaultOf(other);
      EXPECT_EQ((*settings_).*other.field, expected) << other.key;
    }
  }
}

TEST_F(SettingsFileTest, KeysAreComparedWholeAndWithCase) {
  ASSERT_EQ(Read("useutf8 = 1\nUSEUTF8 = 1\nUseUTF = 1\nUseUTF88 = 1\nNoSuchKey = 1\n"),
            SettingsStatus::kOk);
  for (const NumberSetting& setting : kNumberSettings) {
    EXPECT_EQ((*settings_).*setting.field, DefaultOf(setting)) << setting.key;
  }
}

TEST_F(SettingsFileTest, EveryTextKeyInEveryForm) {
  const struct {
    const char* what;
    std::string_view behindKey;
    bool stored;
    std::string_view value;
  } lines[] = {
      {"plain", " = \"a b\"\n", true, "a b"},
      {"tabs, several blanks and a carriage return", "\t =\t\t \"a b\"\r\n", true, "a b"},
      {"no blank behind the sign", " =\"a b\"\n", true, "a b"},
      {"blanks inside stay", " = \" a \"\n", true, " a "},
      {"up to the next quote", " = \"a\" \"b\"\n", true, "a"},
      {"unclosed: to the end of the line", " = \"a\n", true, "a\n"},
      {"unclosed: with the carriage return", " = \"a\r\n", true, "a\r\n"},
      {"empty quotes", " = \"\"\n", false, ""},
      {"no quotes", " = a\n", false, ""},
      {"nothing", " =\n", false, ""},
  };
  for (const TextCase& c : kTexts) {
    SCOPED_TRACE(c.key);
    const std::string key = c.key;
    for (const auto& line : lines) {
      SCOPED_TRACE(line.what);
      ASSERT_EQ(Read(key + " = \"before\"\n" + key + std::string(line.behindKey)),
                SettingsStatus::kOk);
      const std::string_view kept = c.emptiedByLine ? "" : "before";
      EXPECT_EQ(c.get(*settings_), line.stored ? line.value : kept);
    }
  }
}

TEST_F(SettingsFileTest, TextsAreCutToTheirFields) {
  for (const TextCase& c : kTexts) {
    SCOPED_TRACE(c.key);
    const std::string start = std::string(c.key) + " = \"";
    // A line is read in pieces of 2047 bytes, so the longest value may not come to its field whole.
    const size_t inPiece = 2047 - start.size();
    for (const size_t length : {c.limit - 1, c.limit, c.limit + 1}) {
      SCOPED_TRACE(length);
      ASSERT_EQ(Read(start + std::string(length, 'x') + "\"\n"), SettingsStatus::kOk);
      EXPECT_EQ(c.get(*settings_), std::string(std::min({length, c.limit, inPiece}), 'x'));
    }
  }
}

TEST_F(SettingsFileTest, ALongLineIsReadInPieces) {
  // The second piece begins behind 2047 bytes and is a line of its own.
  std::string line = "Unknown ";
  line.resize(2047, 'x');
  ASSERT_EQ(Read(line + "Timing = 1\n"), SettingsStatus::kOk);
  EXPECT_EQ(settings_->Timing, 1);
  line.pop_back();
  ASSERT_EQ(Read(line + "Timing = 1\n"), SettingsStatus::kOk);
  EXPECT_EQ(settings_->Timing, 0);
}

TEST_F(SettingsFileTest, TheLastOfARepeatedKeyWins) {
  ASSERT_EQ(Read("Timing = 1\nTiming = 2\nCharset = \"a\"\nCharset = \"b\"\n"),
            SettingsStatus::kOk);
  EXPECT_EQ(settings_->Timing, 2);
  EXPECT_EQ(View(settings_->Charset), "b");
}

TEST_F(SettingsFileTest, TheLastLineNeedsNoLineFeed) {
  EXPECT_EQ(ReadSettings(*settings_, LanguageLines() + "Timing = 4"), SettingsStatus::kOk);
  EXPECT_EQ(settings_->Timing, 4);
}

TEST_F(SettingsFileTest, ANulEndsItsLine) {
  ASSERT_EQ(Read("Timing = 1\0"
                 "23\nVersion = \"1\0"
                 "2\"\n\0Logging = 1\nSpelling = 1\n"sv),
            SettingsStatus::kOk);
  EXPECT_EQ(settings_->Timing, 1);
  EXPECT_EQ(View(settings_->Version), "1");
  EXPECT_EQ(settings_->Logging, 0);
  EXPECT_EQ(settings_->Spelling, 1);
}

TEST_F(SettingsFileTest, AWordIdentifierOfSixBytesIsInvalid) {
  EXPECT_EQ(Read("DictIDLen = 6\nTiming = 1\n"), SettingsStatus::kInvalidDictIdLen);
  EXPECT_EQ(settings_->Timing, 0) << "reading has stopped";
  EXPECT_EQ(Read("DictIDLen = 99999999999\n"), SettingsStatus::kInvalidDictIdLen);
}

TEST_F(SettingsFileTest, AWordIdentifierOfFiveBytesLoads) {
  EXPECT_EQ(Read("DictIDLen = 5\n"), SettingsStatus::kOk);
  EXPECT_EQ(settings_->DictIDLen, 5);
}

TEST_F(SettingsFileTest, ALinkBackAddressWithAQuestionMarkChangesTheSeparator) {
  ASSERT_EQ(Read("LinkBackURL = \"page.php?id=1\"\n"), SettingsStatus::kOk);
  EXPECT_EQ(View(settings_->LinkBackURL), "page.php?id=1");
  EXPECT_EQ(View(settings_->linkBackSeparator), "&amp;");
}

TEST_F(SettingsFileTest, ALinkBackAddressWithoutAQuestionMarkKeepsTheSeparator) {
  ASSERT_EQ(Read("LinkBackURL = \"page.php\"\n"), SettingsStatus::kOk);
  EXPECT_EQ(View(settings_->linkBackSeparator), "?");
}

TEST_F(SettingsFileTest, TheDatePickerPathEmptiesTheLinkBackAddress) {
  ASSERT_EQ(Read("LinkBackURL = \"page.php?a\"\nDatePickerPath = \"/js\"\n"), SettingsStatus::kOk);
  EXPECT_EQ(View(settings_->LinkBackURL), "");
  EXPECT_EQ(View(settings_->DatePickerPath), "/js");
  EXPECT_EQ(View(settings_->linkBackSeparator), "&amp;");
  ASSERT_EQ(Read("LinkBackURL = \"page.php\"\nDatePickerPath = \"/js\"\nDatePickerPath = \"\"\n"),
            SettingsStatus::kOk);
  EXPECT_EQ(View(settings_->DatePickerPath), "/js") << "its own field is not emptied";
  ASSERT_EQ(Read("DatePickerPath = \"/js\"\nLinkBackURL = \"page.php\"\n"), SettingsStatus::kOk);
  EXPECT_EQ(View(settings_->LinkBackURL), "page.php");
}

// Language lines.

TEST_F(SettingsFileTest, FortyNineKeysLoad) {
  EXPECT_EQ(ReadSettings(*settings_, LanguageLines()), SettingsStatus::kOk);
  EXPECT_EQ(settings_->language.count, 49);
  for (size_t i = 0; i < 49; ++i) {
    EXPECT_EQ(Text(settings_->language, static_cast<Str>(i)), "text" + std::to_string(i));
  }
}

TEST_F(SettingsFileTest, FortyEightKeysMissOne) {
  EXPECT_EQ(ReadSettings(*settings_, LanguageLines(48)), SettingsStatus::kMissingText);
}

TEST_F(SettingsFileTest, AnEmptyFileMissesAllTexts) {
  EXPECT_EQ(ReadSettings(*settings_, ""), SettingsStatus::kMissingText);
}

TEST_F(SettingsFileTest, ARepeatedKeyCountsForAMissingOne) {
  EXPECT_EQ(ReadSettings(*settings_, LanguageLines(48) + "STR_OR = \"again\"\n"),
            SettingsStatus::kOk);
  EXPECT_STREQ(Text(settings_->language, Str::kFormDateButton), "");
  EXPECT_STREQ(Text(settings_->language, Str::kOr), "again");
}

TEST_F(SettingsFileTest, AnUnknownLanguageKeyDoesNotCount) {
  EXPECT_EQ(ReadSettings(*settings_, LanguageLines(48) + "STR_OTHER = \"x\"\n"),
            SettingsStatus::kMissingText);
  EXPECT_EQ(settings_->language.count, 48);
}

TEST_F(SettingsFileTest, ALanguageTextKeepsItsMarkup) {
  ASSERT_EQ(Read("STR_OR = \"other\"\n"), SettingsStatus::kOk);  // replaced by a later line
  EXPECT_STREQ(Text(settings_->language, Str::kOr), "text40");
  EXPECT_EQ(ReadSettings(*settings_, LanguageLines() + "STR_OR = \"<b class='x'>or</b>\"\n"),
            SettingsStatus::kOk);
  EXPECT_STREQ(Text(settings_->language, Str::kOr), "<b class='x'>or</b>");
}

TEST_F(SettingsFileTest, ALanguageLineMayStartWithBlanks) {
  EXPECT_EQ(ReadSettings(*settings_, LanguageLines(48) + "\t STR_FORM_DATE_BUTTON = \"go\"\n"),
            SettingsStatus::kOk);
  EXPECT_STREQ(Text(settings_->language, Str::kFormDateButton), "go");
}

// Sections.

TEST_F(SettingsFileTest, CategoryNames) {
  ASSERT_EQ(Read("NumCats = 3\ncatnames\n News\t\r\nEvents & more \n\"Quoted\"\nTiming = 1\n"),
            SettingsStatus::kOk);
  ASSERT_EQ(settings_->categoryNames.size(), 3);
  EXPECT_STREQ(settings_->categoryNames.At(0), "News");
  EXPECT_STREQ(settings_->categoryNames.At(1), "Events & more");
  EXPECT_STREQ(settings_->categoryNames.At(2), "\"Quoted\"");
  EXPECT_EQ(settings_->Timing, 1) << "the line behind the section is an ordinary one";
}

TEST_F(SettingsFileTest, CategoryNamesBeforeTheirNumberAreOrdinaryLines) {
  ASSERT_EQ(Read("catnames\nNews\nTiming = 1\nNumCats = 2\n"), SettingsStatus::kOk);
  EXPECT_EQ(settings_->categoryNames.size(), 0);
  EXPECT_EQ(settings_->Timing, 1);
  ASSERT_EQ(Read("NumCats = 0\ncatnames\nTiming = 1\n"), SettingsStatus::kOk);
  EXPECT_EQ(settings_->categoryNames.size(), 0);
  EXPECT_EQ(settings_->Timing, 1);
  ASSERT_EQ(Read("NumCats = -4\ncatnames\nTiming = 1\n"), SettingsStatus::kOk);
  EXPECT_EQ(settings_->Timing, 1);
}

TEST_F(SettingsFileTest, CategoryNamesEndWithTheFile) {
  ASSERT_EQ(ReadSettings(*settings_, LanguageLines() + "NumCats = 2147483647\ncatnames\nA\nB"),
            SettingsStatus::kOk);
  ASSERT_EQ(settings_->categoryNames.size(), 2);
  EXPECT_STREQ(settings_->categoryNames.At(1), "B");
}

TEST_F(SettingsFileTest, ANulEndsTheCategoryNames) {
  ASSERT_EQ(Read("NumCats = 5\ncatnames\nA\nB\n\0\nTiming = 1\n"sv), SettingsStatus::kOk);
  EXPECT_EQ(settings_->categoryNames.size(), 2);
  EXPECT_EQ(settings_->Timing, 1);
}

TEST_F(SettingsFileTest, ACountLoweredLaterLeavesNoMoreThanThat) {
  ASSERT_EQ(Read("NumCats = 3\ncatnames\nA\nB\nC\nNumCats = 2\n"), SettingsStatus::kOk);
  ASSERT_EQ(settings_->categoryNames.size(), 2);
  EXPECT_STREQ(settings_->categoryNames.At(1), "B");
  ASSERT_EQ(Read(std::string(kTwoFields) + "NumMetaFields = 1\n"), SettingsStatus::kOk);
  ASSERT_EQ(settings_->metaFields.size(), 1u);
  EXPECT_EQ(View(settings_->metaFields[0].name), "colour");
  ASSERT_EQ(Read(std::string(kTwoFields) + "NumMetaFields = -1\n"), SettingsStatus::kOk);
  EXPECT_TRUE(settings_->metaFields.empty());
}

TEST_F(SettingsFileTest, TheSectionIsNamedByItsWholeFirstToken) {
  ASSERT_EQ(Read("NumCats = 1\ncatnamesx\nTiming = 1\n"), SettingsStatus::kOk);
  EXPECT_EQ(settings_->categoryNames.size(), 0);
  ASSERT_EQ(Read("NumCats = 1\n  catnames of the site\nTiming = 1\n"), SettingsStatus::kOk);
  ASSERT_EQ(settings_->categoryNames.size(), 1);
  EXPECT_STREQ(settings_->categoryNames.At(0), "Timing = 1");
}

TEST_F(SettingsFileTest, MetaFields) {
  ASSERT_EQ(Read(kTwoFields), SettingsStatus::kOk);
  ASSERT_EQ(settings_->metaFields.size(), 2u);
  const MetaFieldDef& colour = settings_->metaFields[0];
  EXPECT_EQ(colour.type, 3);
  EXPECT_EQ(View(colour.name), "colour");
  EXPECT_EQ(View(colour.label), "Colour:");
  EXPECT_EQ(View(colour.extraText), "the extra");
  EXPECT_EQ(colour.method, 1);
  EXPECT_EQ(colour.numValues, 2);
  EXPECT_STREQ(MetaListValue(*settings_, colour, 0), "red");
  EXPECT_STREQ(MetaListValue(*settings_, colour, 1), "green");
  EXPECT_EQ(MetaListValue(*settings_, colour, 2), nullptr);
  const MetaFieldDef& year = settings_->metaFields[1];
  EXPECT_EQ(year.type, 0);
  EXPECT_EQ(View(year.name), "year");
  EXPECT_EQ(View(year.label), "Year");
  EXPECT_EQ(View(year.extraText), "since");
  EXPECT_EQ(year.method, 2);
  EXPECT_EQ(year.numValues, 7) << "only kinds 2 and 3 carry a list";
  EXPECT_EQ(MetaListValue(*settings_, year, 0), nullptr);
  EXPECT_EQ(settings_->Timing, 1);
}

TEST_F(SettingsFileTest, OnlyKindsTwoAndThreeCarryAList) {
  for (const int type : {-1, 0, 1, 2, 3, 4, 5}) {
    SCOPED_TRACE(type);
    ASSERT_EQ(Read("NumMetaFields = 1\nmetafields\n" + std::to_string(type) +
                   "\nn\nl\ne\n0\n1\nTiming = 1\n"),
              SettingsStatus::kOk);
    const bool list = type == 2 || type == 3;
    EXPECT_EQ(settings_->Timing, list ? 0 : 1);
    EXPECT_EQ(MetaListValue(*settings_, settings_->metaFields[0], 0) != nullptr, list);
  }
}

TEST_F(SettingsFileTest, MetaFieldTextsAreCut) {
  const std::string longText(300, 'x');
  ASSERT_EQ(Read("NumMetaFields = 1\nmetafields\n2\n" + longText + "\n" + longText + "\n" +
                 longText + "\n0\n1\n" + longText + "\n"),
            SettingsStatus::kOk);
  const MetaFieldDef& field = settings_->metaFields[0];
  EXPECT_EQ(View(field.name).size(), 103u);
  EXPECT_EQ(View(field.label).size(), 100u);
  EXPECT_EQ(View(field.extraText).size(), 102u);
  EXPECT_EQ(std::string(MetaListValue(*settings_, field, 0)).size(), 64u);
}

TEST_F(SettingsFileTest, MetaFieldNumbersAreReadLeniently) {
  ASSERT_EQ(Read("NumMetaFields = 1\nmetafields\n  4 money\nn\nl\ne\nnone\n-3\nTiming = 1\n"),
            SettingsStatus::kOk);
  EXPECT_EQ(settings_->metaFields[0].type, 4);
  EXPECT_EQ(settings_->metaFields[0].method, 0);
  EXPECT_EQ(settings_->metaFields[0].numValues, -3);
  EXPECT_EQ(settings_->Timing, 1);
}

TEST_F(SettingsFileTest, MetaFieldsCutShortAreInvalid) {
  const std::string all = kTwoFields;
  const std::string section = all.substr(0, all.find("Timing"));
  // Cut behind every line of the section but the last.
  for (size_t at = section.find("metafields\n") + 11; at < section.size();
       at = section.find('\n', at) + 1) {
    SCOPED_TRACE(at);
    Settings settings;
    EXPECT_EQ(ReadSettings(settings, LanguageLines() + section.substr(0, at)),
              SettingsStatus::kInvalid);
  }
  Settings settings;
  EXPECT_EQ(ReadSettings(settings, LanguageLines() + section), SettingsStatus::kOk);
}

TEST_F(SettingsFileTest, HugeCountsAreInvalidAndHarmless) {
  Settings settings;
  EXPECT_EQ(
      ReadSettings(settings,
                   LanguageLines() + "NumMetaFields = 2147483647\nmetafields\n0\nn\nl\ne\n0\n0\n"),
      SettingsStatus::kInvalid);
  Settings other;
  EXPECT_EQ(ReadSettings(other, LanguageLines() + "NumMetaFields = 1\nmetafields\n"
                                                  "2\nn\nl\ne\n0\n2147483647\na\n"),
            SettingsStatus::kInvalid);
}

TEST_F(SettingsFileTest, MetaFieldsBeforeTheirNumberAreIgnored) {
  ASSERT_EQ(Read("metafields\nTiming = 1\nNumMetaFields = 1\n"), SettingsStatus::kOk);
  EXPECT_TRUE(settings_->metaFields.empty());
  EXPECT_EQ(settings_->Timing, 1);
}

TEST_F(SettingsFileTest, AccentTable) {
  ASSERT_EQ(Read("MapAccents = 1\nAccentChars = \"\xC3\xA9\", \"\xC3\xBC\" \"ab\"\n"
                 "NormalChars = \"e\",\"ue\",\"\"\nTiming = 1\n"),
            SettingsStatus::kOk);
  EXPECT_EQ(settings_->MapAccents, 1);
  EXPECT_TRUE(settings_->hasAccentTable);
  ASSERT_EQ(settings_->accents.size(), 3u);
  EXPECT_EQ(View(settings_->accents[0].accent), "\xC3\xA9");
  EXPECT_EQ(View(settings_->accents[0].normal), "e");
  EXPECT_EQ(View(settings_->accents[1].accent), "\xC3\xBC");
  EXPECT_EQ(View(settings_->accents[1].normal), "ue");
  EXPECT_EQ(View(settings_->accents[2].accent), "ab");
  EXPECT_EQ(View(settings_->accents[2].normal), "");
  EXPECT_EQ(settings_->Timing, 1);
}

TEST_F(SettingsFileTest, AccentMappingTwoReadsNoAccentLines) {
  ASSERT_EQ(Read("MapAccents = 2\nTiming = 1\nLogging = 1\n"), SettingsStatus::kOk);
  EXPECT_EQ(settings_->MapAccents, 2);
  EXPECT_FALSE(settings_->hasAccentTable);
  EXPECT_EQ(settings_->Timing, 1);
  EXPECT_EQ(settings_->Logging, 1);
}

TEST_F(SettingsFileTest, AShorterNormalLineLeavesTheLastEmpty) {
  ASSERT_EQ(Read("MapAccents = 1\nAccentChars = \"a\" \"b\" \"c\"\nNormalChars = \"x\" \"y\"\n"),
            SettingsStatus::kOk);
  ASSERT_EQ(settings_->accents.size(), 3u);
  EXPECT_EQ(View(settings_->accents[1].normal), "y");
  EXPECT_EQ(View(settings_->accents[2].accent), "c");
  EXPECT_EQ(View(settings_->accents[2].normal), "");
}

TEST_F(SettingsFileTest, ALongerNormalLineIsCut) {
  ASSERT_EQ(Read("MapAccents = 1\nAccentChars = \"a\"\nNormalChars = \"x\" \"y\" \"z\"\n"),
            SettingsStatus::kOk);
  ASSERT_EQ(settings_->accents.size(), 1u);
  EXPECT_EQ(View(settings_->accents[0].normal), "x");
}

TEST_F(SettingsFileTest, AnAccentLineWithoutItemsIsATableOfNone) {
  for (const std::string_view line :
       {"AccentChars = none\n", "AccentChars =\n", "AccentChars = \"\n"}) {
    SCOPED_TRACE(line);
    ASSERT_EQ(Read("MapAccents = 1\n" + std::string(line) + "NormalChars = \"x\"\nTiming = 1\n"),
              SettingsStatus::kOk);
    EXPECT_TRUE(settings_->hasAccentTable);
    EXPECT_TRUE(settings_->accents.empty());
    EXPECT_EQ(settings_->Timing, 1);
  }
}

TEST_F(SettingsFileTest, AccentItemsAreCut) {
  ASSERT_EQ(Read("MapAccents = 1\nAccentChars = \"1234567890\" \"123456789\"\n"
                 "NormalChars = \"12345\" \"1234\"\n"),
            SettingsStatus::kOk);
  EXPECT_EQ(View(settings_->accents[0].accent), "123456789");
  EXPECT_EQ(View(settings_->accents[0].normal), "1234");
  EXPECT_EQ(View(settings_->accents[1].accent), "123456789");
  EXPECT_EQ(View(settings_->accents[1].normal), "1234");
}

// Failures.

TEST_F(SettingsFileTest, EveryFailedAllocationIsReported) {
  const std::string bytes = "NumCats = 2\ncatnames\nA\nB\n" + std::string(kTwoFields) +
                            "MapAccents = 1\nAccentChars = \"a\"\nNormalChars = \"b\"\n" +
                            LanguageLines();
  int32_t failures = 0;
  for (int32_t failing = 1;; ++failing) {
    SCOPED_TRACE(failing);
    Settings settings;
    g_failAllocationNumber = failing;
    const SettingsStatus status = ReadSettings(settings, bytes);
    if (g_failAllocationNumber > 0) {
      EXPECT_EQ(status, SettingsStatus::kOk);
      break;
    }
    EXPECT_EQ(status, SettingsStatus::kNoMemory);
    ++failures;
  }
  EXPECT_GE(failures, 49 + 4);  // each text, the names, the fields, their values, the accents
}

TEST_F(SettingsFileTest, ReadsTheFileOfADirectory) {
  const support::ScratchDirectory scratch;
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  Settings missing;
  EXPECT_EQ(ReadSettingsFile(missing, directory), SettingsStatus::kCannotOpen);
  std::ofstream(scratch.path() / "settings.vdat", std::ios::binary)
      << LanguageLines() << "Timing = 1\n";
  Settings settings;
  settings.UseBigPageInfoData = 1;
  Set(settings.linkBackSeparator, "&amp;");
  EXPECT_EQ(ReadSettingsFile(settings, directory), SettingsStatus::kOk);
  EXPECT_EQ(settings.Timing, 1);
  EXPECT_EQ(settings.UseBigPageInfoData, 0);
  EXPECT_EQ(View(settings.linkBackSeparator), "?");
}

TEST_F(SettingsFileTest, ADirectoryInItsPlaceCannotBeOpened) {
  const support::ScratchDirectory scratch;
  std::filesystem::create_directory(scratch.path() / "settings.vdat");
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  EXPECT_EQ(ReadSettingsFile(*settings_, directory), SettingsStatus::kCannotOpen);
}

TEST_F(SettingsFileTest, TheCodesOfTheField) {
  EXPECT_EQ(static_cast<int>(SettingsStatus::kOk), 0);
  EXPECT_EQ(static_cast<int>(SettingsStatus::kInvalid), 1);
  EXPECT_EQ(static_cast<int>(SettingsStatus::kNoMemory), 4);
  EXPECT_EQ(static_cast<int>(SettingsStatus::kInvalidDictIdLen), 5);
  EXPECT_EQ(static_cast<int>(SettingsStatus::kCannotOpen), 6);
}

}  // namespace
}  // namespace vela
