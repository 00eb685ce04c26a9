#include "output/highlighted.h"

#include <gtest/gtest.h>

#include <string>

#include "search/query.h"
#include "support/failing_allocation.h"

namespace vela {
namespace {

// A query of one word, and the settings it is shown under.
struct Shown {
  Settings settings;
  TermList terms;
  HighlightTerms highlight;

  explicit Shown(std::string_view query) {
    settings.Highlighting = 1;
    settings.ToLowerSearchWords = 1;
    bool hasPhrase = false;
    EXPECT_TRUE(SplitQuery(query, terms, hasPhrase));
    EXPECT_TRUE(CollectHighlightTerms(highlight, terms, true));
  }
  std::string Of(std::string_view text) const {
    return Highlighted(text, settings, highlight).text();
  }
};

constexpr char kTitle[] = "Cat &amp; e&#45;mail <b>";

TEST(Highlighted, OffShowsTheTextAsStored) {
  Shown shown("cat");
  Set(shown.settings.WordJoinChars, "-");
  shown.settings.Highlighting = 0;
  EXPECT_EQ(shown.Of(kTitle), kTitle);
}

TEST(Highlighted, AnyOtherValueMarks) {
  for (int32_t value : {1, 2, -1}) {
    Shown shown("cat");
    shown.settings.Highlighting = value;
    EXPECT_EQ(shown.Of("A Cat"), "A <span class=\"highlight\">Cat</span>");
  }
}

TEST(Highlighted, SettingsTellCaseCharacterSetAndJoinCharacters) {
  Shown exact("cat");
  exact.settings.ToLowerSearchWords = 0;
  EXPECT_EQ(exact.Of("Cat"), "Cat");
  Shown utf8("\u00E9cole");
  utf8.settings.UseUTF8 = 1;
  EXPECT_EQ(utf8.Of("\u00C9cole"), "<span class=\"highlight\">\u00C9cole</span>");
  Shown joined("e-mail");
  EXPECT_EQ(joined.Of("e-mail"), "e-mail");
  Set(joined.settings.WordJoinChars, "-");
  EXPECT_EQ(joined.Of("e-mail"), "<span class=\"highlight\">e&#45;mail</span>");
}

TEST(Highlighted, EmptyText) { EXPECT_EQ(Shown("*").Of(""), ""); }

TEST(Highlighted, WithoutMemoryForTheMarksTheTextStands) {
  const Shown shown("cat");
  for (int32_t failing = 1; failing <= 4; ++failing) {
    g_failAllocationNumber = failing;
    const Highlighted highlighted("A cat", shown.settings, shown.highlight);
    g_failAllocationNumber = 0;
    EXPECT_STREQ(highlighted.text(), "A cat");
  }
}

TEST(Highlighted, WithoutAnyMemoryThereIsNoText) {
  Shown shown("cat");
  shown.settings.Highlighting = 0;
  g_failAllocationNumber = 1;
  const Highlighted highlighted("A cat", shown.settings, shown.highlight);
  g_failAllocationNumber = 0;
  EXPECT_STREQ(highlighted.text(), "");
}

}  // namespace
}  // namespace vela
