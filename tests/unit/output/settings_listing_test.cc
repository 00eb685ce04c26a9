#include "output/settings_listing.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CapturedResponse;
using support::DefineCategories;

std::string Listed(const Settings& settings) {
  CapturedResponse captured(true);
  WriteSettingsListing(captured.response, settings);
  return captured.Text();
}

std::string Element(const std::string& name, const std::string& value) {
  return "<vela:setting name=\"" + name + "\" value=\"" + value + "\" />\n";
}

// What stands behind the last setting that is always listed ahead of categories and accents.
std::string BehindTheSettings(const Settings& settings) {
  const std::string listed = Listed(settings);
  const std::string last = "<vela:setting name=\"XMLHighlight\" ";
  const size_t at = listed.find(last);
  EXPECT_NE(at, listed.npos);
  return listed.substr(listed.find('\n', at) + 1);
}

// Every listed number gets a value of its own, so that none can stand for another.
TEST(SettingsListing, EverySettingInItsOrder) {
  Settings s;
  int32_t* const numbers[] = {
      &s.UseUTF8,           &s.MinWordLen,   &s.Highlighting,        &s.HighlightLimit,
      &s.GotoHighlight,     &s.PdfHighlight, &s.PluginOpenNewWindow, &s.DisplayMetaDesc,
      &s.DisplayCatSummary, &s.UseDateTime,  &s.DisplayDate,         &s.DisplayContext,
      &s.DisplayTitle,      &s.DisplayTerms, &s.DisplayScore,        &s.DisplayURL,
      &s.DisplayFilesize};
  int32_t next = 101;
  for (int32_t* number : numbers) *number = next++;
  Set(s.LinkTarget, "_top");
  s.UseVelaImage = 201;
  Set(s.Version, "8.1 & <b>");
  int32_t* const further[] = {&s.WordSplit,       &s.SearchAsSubstring,  &s.ToLowerSearchWords,
                              &s.ContextSize,     &s.MaxContextKeywords, &s.AllowExactPhrase,
                              &s.MaxContextSeeks, &s.MaxSearchTime};
  next = 301;
  for (int32_t* number : further) *number = next++;
  Set(s.WordJoinChars, "-&'");
  int32_t* const last[] = {&s.Spelling, &s.SpellingWhenLessThan, &s.Recommended,  &s.RecommendedMax,
                           &s.UseCats,  &s.SearchMultiCats,      &s.XMLHighlight, &s.MapAccents};
  next = 401;
  for (int32_t* number : last) *number = next++;

  const std::vector<std::pair<const char*, const char*>> expected = {
      {"UseUTF8", "101"},
      {"MinWordLen", "102"},
      {"Highlighting", "103"},
      {"HighlightLimit", "104"},
      {"GotoHighlight", "105"},
      {"PdfHighlight", "106"},
      {"PluginOpenNewWindow", "107"},
      {"DisplayMetaDesc", "108"},
      {"DisplayCatSummary", "109"},
      {"UseDateTime", "110"},
      {"DisplayDate", "111"},
      {"DisplayContext", "112"},
      {"DisplayTitle", "113"},
      {"DisplayTerms", "114"},
      {"DisplayScore", "115"},
      {"DisplayURL", "116"},
      {"DisplayFilesize", "117"},
      {"LinkTarget", "_top"},
      {"UseVelaImage", "201"},
      {"Version", "8.1 & <b>"},  // texts are written as they stand
      {"WordSplit", "301"},
      {"SearchAsSubstring", "302"},
      {"ToLowerSearchWords", "303"},
      {"ContextSize", "304"},
      {"MaxContextKeywords", "305"},
      {"AllowExactPhrase", "306"},
      {"MaxContextSeeks", "307"},
      {"MaxSearchTime", "308"},
      {"WordJoinChars", "-&'"},
      {"Spelling", "401"},
      {"SpellingWhenLessThan", "402"},
      {"Recommended", "403"},
      {"RecommendedMax", "404"},
      {"UseCats", "405"},
      {"SearchMultiCats", "406"},
      {"XMLHighlight", "407"},
      {"MapAccents", "408"},
  };
  std::string text;
  for (const auto& [name, value] : expected) text += Element(name, value);
  EXPECT_EQ(Listed(s), text);
}

TEST(SettingsListing, NegativeNumbersAndEmptyTexts) {
  Settings settings;
  settings.MinWordLen = INT32_MIN;
  const std::string listed = Listed(settings);
  EXPECT_NE(listed.find(Element("MinWordLen", "-2147483648")), listed.npos);
  EXPECT_NE(listed.find(Element("LinkTarget", "")), listed.npos);
}

TEST(SettingsListing, CategoriesTable) {
  const struct {
    const char* what;
    int32_t useCats;
    std::vector<std::string> names;
    const char* expected;
  } cases[] = {
      {"not in use", 0, {"News", "Help"}, ""},
      {"in use",
       1,
       {"News", "Q & A"},
       "<vela:setting name=\"NumCats\" value=\"2\" />\n<vela:category>News</vela:category>\n"
       "<vela:category>Q & A</vela:category>\n"},
      {"in use without any", 1, {}, "<vela:setting name=\"NumCats\" value=\"0\" />\n"},
      {"only 1 counts as in use", 2, {"News"}, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    DefineCategories(settings, c.names);
    settings.UseCats = c.useCats;
    EXPECT_EQ(BehindTheSettings(settings), c.expected + Element("MapAccents", "0"));
  }
}

TEST(SettingsListing, AccentsAreRunTogether) {
  Settings settings;
  settings.MapAccents = 1;
  settings.hasAccentTable = true;
  ASSERT_TRUE(settings.accents.TryAllocate(2));
  Set(settings.accents[0].accent, "\u00E9");
  Set(settings.accents[0].normal, "e");
  Set(settings.accents[1].accent, "\u00FC");
  Set(settings.accents[1].normal, "ue");
  EXPECT_EQ(BehindTheSettings(settings),
            Element("MapAccents", "1") +
                "<vela:setting name=\"AccentChars\">\u00E9\u00FC</vela:setting>\n"
                "<vela:setting name=\"NormalChars\">eue</vela:setting>\n");
}

TEST(SettingsListing, AccentTableOfNoItems) {
  Settings settings;
  settings.MapAccents = 1;
  settings.hasAccentTable = true;
  EXPECT_EQ(BehindTheSettings(settings),
            Element("MapAccents", "1") +
                "<vela:setting name=\"AccentChars\"></vela:setting>\n"
                "<vela:setting name=\"NormalChars\"></vela:setting>\n");
}

TEST(SettingsListing, WithoutATableOnlyTheSettingIsListed) {
  Settings settings;
  EXPECT_EQ(BehindTheSettings(settings), Element("MapAccents", "0"));
  settings.MapAccents = 1;
  EXPECT_EQ(BehindTheSettings(settings), Element("MapAccents", "1"));
}

}  // namespace
}  // namespace vela
