#include "indexer/words/detected_language.h"

#include <gtest/gtest.h>

#include <string>

namespace vela::indexer {
namespace {

TEST(DetectedLanguage, OfTextsInManyLanguages) {
  const struct {
    const char* text;
    const char* language;
  } kCases[] = {
      {"The sail is hoisted by a rope which runs over the top of the mast and down to the deck.",
       "en"},
      {"Das Segel wird mit einem Seil gesetzt, das \u00FCber die Spitze des Mastes zum Deck "
       "l\u00E4uft.",
       "de"},
      {"La voile est hiss\u00E9e par un cordage qui passe au sommet du m\u00E2t et redescend sur "
       "le pont.",
       "fr"},
      {"\u041F\u0430\u0440\u0443\u0441 \u043F\u043E\u0434\u043D\u0438\u043C\u0430\u044E\u0442 "
       "\u0432\u0435\u0440\u0451\u0432\u043A\u043E\u0439, \u043A\u043E\u0442\u043E\u0440\u0430"
       "\u044F \u0438\u0434\u0451\u0442 \u0447\u0435\u0440\u0435\u0437 \u043C\u0430\u0447\u0442"
       "\u0443 \u043D\u0430 \u043F\u0430\u043B\u0443\u0431\u0443.",
       "ru"},
      {"\u5E06\u306F\u30ED\u30FC\u30D7\u3067\u5F15\u304D\u4E0A\u3052\u3089\u308C\u307E\u3059\u3002"
       "\u305D\u306E\u30ED\u30FC\u30D7\u306F\u30DE\u30B9\u30C8\u306E\u4E0A\u3092\u901A\u308A\u307E"
       "\u3059\u3002",
       "ja"},
      // The code is the present one, not the one that it had before 1989.
      {"\u05D4\u05DE\u05E4\u05E8\u05E9 \u05DE\u05D5\u05E8\u05DD \u05D1\u05D7\u05D1\u05DC \u05E9"
       "\u05E2\u05D5\u05D1\u05E8 \u05DE\u05E2\u05DC \u05E8\u05D0\u05E9 \u05D4\u05EA\u05D5\u05E8"
       "\u05DF \u05D5\u05D9\u05D5\u05E8\u05D3 \u05DC\u05E1\u05D9\u05E4\u05D5\u05DF",
       "he"},
      {"", ""},
      {"Home News Contact", ""},
      {"\xFF\xFE The sail is hoisted by a rope which runs over the top of the mast.", ""},
      {"0123456789 0123456789 0123456789 0123456789 0123456789 0123456789 0123456789 0123", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(DetectedLanguage(c.text), c.language);
  }
}

TEST(DetectedLanguage, OfMarkupItsTextCounts) {
  std::string html = "<html><script>var the_sail = 'is hoisted by a rope which runs';</script>";
  for (int i = 0; i < 20; ++i) html += "<div class='the top of the mast' title='down to the deck'>";
  html += "Das Segel wird mit einem Seil gesetzt, das zur Spitze des Mastes und zum Deck geht.";
  EXPECT_EQ(DetectedLanguage(html, true), "de");
}

TEST(DetectedLanguage, ALongTextIsCutBetweenCharacters) {
  const std::string sentence =
      "The sail is hoisted by a rope which runs over the top of the mast and down to the deck.";
  for (size_t before = 0; before < 4; ++before) {
    std::string text = sentence;
    text.resize(kLanguageSampleBytes - before, ' ');
    EXPECT_EQ(DetectedLanguage(text + "\u5E06\u306F"), "en") << before;
  }
}

TEST(DetectedLanguage, CodesAreOfTwoOrThreeSmallLetters) {
  for (const char* code : {"en", "fil"}) EXPECT_TRUE(IsLanguageCode(code)) << code;
  for (const char* code : {"", "e", "EN", "en-GB", "x1", "engl"}) {
    EXPECT_FALSE(IsLanguageCode(code)) << code;
  }
}

}  // namespace
}  // namespace vela::indexer
