#include "search/run_terms.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::Repeat;

using Terms = std::vector<std::string>;

Settings Cutting() {
  Settings settings;
  settings.UseUTF8 = 1;
  settings.AllowExactPhrase = 1;
  settings.CutRuns = 1;
  return settings;
}

TermList Split(const std::string& text) {
  TermList list;
  bool hasPhrase = false;
  EXPECT_TRUE(SplitQuery(text, list, hasPhrase));
  return list;
}

Terms Cut(const std::string& text, const Settings& settings = Cutting()) {
  TermList list = Split(text);
  EXPECT_TRUE(CutRunsOfTerms(list, settings));
  Terms terms;
  for (int32_t i = 0; i < list.size(); ++i) {
    EXPECT_EQ(list[i].data()[list[i].size()], '\0');
    terms.emplace_back(list[i]);
  }
  return terms;
}

TEST(CutRunsOfTerms, Table) {
  const struct {
    const char* what;
    const char* text;
    Terms expected;
  } cases[] = {
      {"nothing to cut", "cat -dog", {"cat", "-dog"}},
      {"a run", "暗号化", {"暗 号 化"}},
      {"one piece", "本", {"本"}},
      {"among other words", "ssh 変更 key", {"ssh", "変 更", "key"}},
      {"a word before it", "debianパッケ", {"debian パ ッ ケ"}},
      {"a word behind it", "日本debian", {"日 本 debian"}},
      {"an exclusion", "-暗号", {"-暗 号"}},
      {"a phrase", "\"暗号 鍵\"", {"暗 号 鍵"}},
      {"a phrase with other words", "\"gnu の make\"", {"gnu の make"}},
      {"a phrase without a run", "\"gnu make\" 本", {"gnu make", "本"}},
      {"an excluded phrase", "-\"暗号 鍵\"", {"-暗 号 鍵"}},
      {"a version behind it", "版1.2", {"版 1.2"}},
      {"hyphens and full stops at the ends of a word", "版-1.2.-本", {"版 1.2 本"}},
      {"a name that begins with a full stop", "日.net", {"日 .net"}},
      {"but no ellipsis", "日..net", {"日 net"}},
      {"nothing but joining signs", "日-本", {"日 本"}},
      {"a restriction to a site", "site:日本", {"site:日本"}},
      {"an excluded restriction", "-site:日本", {"-site:日本"}},
      {"asterisks", "*暗号*", {"暗 号"}},
      {"an asterisk inside", "暗*化", {"暗 化"}},
      {"an asterisk at a word", "deb*日本", {"deb 日 本"}},
      {"asterisks of another term", "deb* 日本", {"deb*", "日 本"}},
      {"half-width kana", "ｶﾞｽ", {"ガ ス"}},
      {"Thai", "ที่นั่ง", {"ที่ นั่ ง"}},
      {"what empty quotes leave", "日本 \"\"", {"日 本", ""}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Cut(c.text), c.expected);
  }
}

TEST(CutRunsOfTerms, OnlyWhereTheSettingsAskForIt) {
  Settings settings = Cutting();
  settings.CutRuns = 0;
  EXPECT_EQ(Cut("暗号", settings), (Terms{"暗号"}));
  settings.CutRuns = 1;
  settings.UseUTF8 = 0;
  EXPECT_EQ(Cut("暗号", settings), (Terms{"暗号"}));
}

TEST(CutRunsOfTerms, ALongTermIsAShorterPhrase) {
  const std::string most = Repeat("暗 ", 63) + "暗";
  EXPECT_EQ(Cut(Repeat("暗", 64)).at(0), most);
  EXPECT_EQ(Cut(Repeat("暗", 65)).at(0), most);
  EXPECT_EQ(Cut(Repeat("暗", 695) + " cat").at(1), "cat");
  // The blanks around the piece make it longer than a term can be.
  const std::string word = Repeat("a", 1041);
  EXPECT_EQ(Cut(word + "暗" + word).at(0), word + " 暗");
}

TEST(CutRunsOfTerms, LeavesTheTermsWithoutMemory) {
  for (int32_t failing : {1, 2}) {
    TermList list = Split("cat 暗号");
    g_failAllocationNumber = failing;
    EXPECT_FALSE(CutRunsOfTerms(list, Cutting()));
    g_failAllocationNumber = 0;
    EXPECT_EQ(list[1], "暗号");
  }
}

TEST(IsPhrase, ARunIsOneAlsoWhereQuotesMakeNone) {
  Settings settings = Cutting();
  settings.AllowExactPhrase = 0;
  EXPECT_TRUE(IsPhrase("暗 号", settings));
  settings.CutRuns = 0;
  EXPECT_FALSE(IsPhrase("暗 号", settings));
}

TEST(JoinedRuns, ReadsAsItWasTyped) {
  const struct {
    const char *what, *term, *expected;
  } cases[] = {
      {"a run", "暗 号 化", "暗号化"},
      {"another word before it", "debian パ ッ", "debian パッ"},
      {"no run", "gnu make", "gnu make"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    QueryText joined;
    EXPECT_EQ(JoinedRuns(c.term, Cutting(), joined), c.expected);
  }
  QueryText joined;
  EXPECT_EQ(JoinedRuns("暗 号", Settings(), joined), "暗 号");
}

TEST(RunTerms, TellsWhatWasTypedAsOneWord) {
  const struct {
    const char *what, *text, *term;
    bool isOne;
  } kCases[] = {
      {"a run", "\u6697\u53F7", "\u6697 \u53F7", true},
      {"a run beside others", "a \u6697\u53F7 -b", "\u6697 \u53F7", true},
      {"a word with a run", "debian\u6697\u53F7", "debian \u6697 \u53F7", true},
      {"in quotes", "\"\u6697\u53F7\"", "\u6697 \u53F7", false},
      {"two words in quotes", "\"a \u6697\"", "a \u6697", false},
      {"a part of a word", "\u6697\u53F7\u5316", "\u6697 \u53F7", false},
      {"another one", "\u6697\u53F7", "\u6697 \u5316", false},
      {"longer than the word", "\u6697", "\u6697 \u53F7", false},
      {"an empty query", "", "\u6697", false},
      {"an empty term", "a", "", false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(IsTypedAsOneWord(c.text, c.term), c.isOne);
  }
}

}  // namespace
}  // namespace vela
