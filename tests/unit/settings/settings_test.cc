// settings_test.cc: the questions that are asked of the settings.

#include "settings/settings.h"

#include <gtest/gtest.h>

namespace vela {
namespace {

TEST(Settings, FieldsHoldTheLongestValues) {
  // Bytes that can be kept.
  static_assert(decltype(Settings::Charset)::kCapacity == 1023);
  static_assert(decltype(Settings::DatePickerPath)::kCapacity == 2083);
  static_assert(decltype(Settings::Version)::kCapacity == 1023);
  static_assert(decltype(Settings::LogFileName)::kCapacity == 255);
  static_assert(decltype(Settings::LinkTarget)::kCapacity == 2047);
  static_assert(decltype(Settings::WordJoinChars)::kCapacity == 1023);
  static_assert(decltype(Settings::LinkBackURL)::kCapacity == 2047);
  static_assert(decltype(Settings::XMLTitle)::kCapacity == 1024);
  static_assert(decltype(Settings::XMLDesc)::kCapacity == 2000);
  static_assert(decltype(Settings::XMLURL)::kCapacity == 2083);
  static_assert(decltype(Settings::XMLXSLTURL)::kCapacity == 2083);
  static_assert(decltype(Settings::XMLOpenSearchDescURL)::kCapacity == 2083);
  static_assert(decltype(Settings::MetaMoneyCurrency)::kCapacity == 63);
  static_assert(decltype(MetaFieldDef::name)::kCapacity == 103);
  static_assert(decltype(MetaFieldDef::label)::kCapacity == 100);
  static_assert(decltype(MetaFieldDef::extraText)::kCapacity == 102);
  static_assert(decltype(AccentPair::accent)::kCapacity == 9);
  static_assert(decltype(AccentPair::normal)::kCapacity == 4);
}

TEST(Settings, WordsFoldForAnyNumberButZero) {
  const struct {
    int32_t toLower;
    int32_t utf8;
    bool foldCase;
    bool isUtf8;
  } cases[] = {
      {0, 0, false, false}, {1, 0, true, false}, {2, 1, true, true},
      {-1, 1, true, true},  {0, 1, false, true}, {1, 2, true, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.toLower);
    Settings settings;
    settings.ToLowerSearchWords = c.toLower;
    settings.UseUTF8 = c.utf8;
    EXPECT_EQ(WordMode(settings).foldCase, c.foldCase);
    EXPECT_EQ(WordMode(settings).utf8, c.isUtf8);
  }
}

TEST(Settings, ListValuesOfAMetaField) {
  Settings settings;
  for (const char* text : {"red", "green", "small", "large"}) {
    ASSERT_TRUE(settings.metaValues.TryAdd(text));
  }
  MetaFieldDef size;
  size.type = kMetaDropDown;
  size.numValues = 2;
  size.firstValue = 2;
  EXPECT_STREQ(MetaListValue(settings, size, 0), "small");
  EXPECT_STREQ(MetaListValue(settings, size, 1), "large");
  EXPECT_EQ(MetaListValue(settings, size, 2), nullptr);
  EXPECT_EQ(MetaListValue(settings, size, -1), nullptr);
  EXPECT_EQ(MetaListValue(settings, size, 255), nullptr);
  MetaFieldDef text;
  text.numValues = 3;  // as read; a text has no list
  EXPECT_EQ(MetaListValue(settings, text, 0), nullptr);
}

}  // namespace
}  // namespace vela
