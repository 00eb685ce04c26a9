#include "indexer/extract/character_references.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

std::string Resolved(std::string_view markup, bool inAttribute) {
  std::string text;
  AppendResolved(markup, inAttribute, text);
  return text;
}

TEST(CharacterReferences, InText) {
  const struct {
    const char* what;
    std::string_view markup, expected;
  } kCases[] = {
      {"named", "&amp;&eacute;&Eacute;&nbsp;", "&\u00E9\u00C9\u00A0"},
      {"the longest name", "&CounterClockwiseContourIntegral;", "\u2233"},
      {"two characters", "&nGt;", "\u226B\u20D2"},
      {"without a semicolon", "&ampx &copy2", "&x \u00A92"},
      {"the longest name without one counts", "&notit; &notin; &notin",
       "\u00ACit; \u2209 \u00ACin"},
      {"names that need it", "&hearts &hearts;", "&hearts \u2665"},
      {"letters of the other case are others", "&AMP; &Amp;", "& &Amp;"},
      {"none", "& && &; &x; &#; &#x; &#x &", "& && &; &x; &#; &#x; &#x &"},
      {"decimal and hexadecimal", "&#233;&#xE9;&#XE9;&#128512;", "\u00E9\u00E9\u00E9\U0001F600"},
      {"numbers without a semicolon", "&#65z&#x41z", "AzAz"},
      {"numbers of windows-1252", "&#128;&#150;&#x9F;", "\u20AC\u2013\u0178"},
      {"its empty places stay", "&#129;", "\u0081"},
      {"no characters", "&#0;&#xD800;&#x110000;&#99999999999999999999;",
       "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"leading zeros", "&#000000000000000000065;", "A"},
      {"at the end", "&am", "&am"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Resolved(c.markup, false), c.expected);
  }
}

TEST(CharacterReferences, InAttributesAnAddressIsNone) {
  const struct {
    std::string_view markup, expected;
  } kCases[] = {
      {"?a=1&copy=2&amp=3", "?a=1&copy=2&amp=3"},
      {"?a=1&copy2&notit;", "?a=1&copy2&notit;"},
      {"&copy; &copy &amp;x", "\u00A9 \u00A9 &x"},
      {"&#65z", "Az"},
  };
  for (const auto& c : kCases) EXPECT_EQ(Resolved(c.markup, true), c.expected);
}

TEST(CharacterReferences, LengthIsOfTheMarkup) {
  EXPECT_EQ(ReadCharacterReference("&lt;b", false).length, 4u);
  EXPECT_EQ(ReadCharacterReference("&ltb", false).length, 3u);
  EXPECT_EQ(ReadCharacterReference("&#60b", false).length, 4u);
  EXPECT_EQ(ReadCharacterReference("&b", false).length, 0u);
}

}  // namespace
}  // namespace vela::indexer
