#include "index/autocomplete.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CapturedResponse;
using support::OpenDirectory;

std::string Item(const std::string& suggestion) {
  return "<div class=\"vela_ac_item\" onclick=\"VelaAutoComplete_UseSuggestion(&quot;" +
         suggestion + "&quot;);\"><a class=\"vela_ac_item\" href=\"#\" target=\"_self\">" +
         suggestion + "</a></div>\n";
}

std::string Items(const std::vector<std::string>& suggestions) {
  std::string items;
  for (const std::string& suggestion : suggestions) items += Item(suggestion);
  return items;
}

using Words = std::vector<std::string_view>;

std::string Answer(std::string_view file, const Words& words, const Settings& settings) {
  OpenDirectory site;
  site.Write("vela_autocomplete.vdat", file);
  CapturedResponse captured;
  EXPECT_TRUE(WriteAutoComplete(captured.response, site.directory, settings, words));
  return captured.Text();
}

TEST(AutoComplete, LinesTable) {
  const struct {
    const char* what;
    std::string file;
    Words words;
    std::vector<std::string> suggestions;
  } cases[] = {
      {"an empty file", "", {""}, {}},
      {"the lines that begin with the word",
       "news\nold\nnewest\nanew\n",
       {"new"},
       {"news", "newest"}},
      {"the whole line", "news\n", {"news"}, {"news"}},
      {"a word longer than the line", "news\n", {"newspaper"}, {}},
      {"in file order", "newest\nnews\nnew\n", {"new"}, {"newest", "news", "new"}},
      {"a repeated line", "news\nnews\n", {"n"}, {"news", "news"}},
      {"the case of the word", "News\nNEWER\n", {"nEw"}, {"News", "NEWER"}},
      {"no words", "news\n", {}, {}},
      {"an empty word fits every line that is not empty", "news\n\nold\n", {""}, {"news", "old"}},
      {"two words that fit one line", "news\n", {"n", "new"}, {"news", "news"}},
      {"items go line by line", "old news\nnew\n", {"new", "old"}, {"old news", "new"}},
      {"the same word twice", "news\nold\n", {"news", "news"}, {"news", "news"}},
      {"a carriage return", "news\r\nnew\r\n", {"new"}, {"news", "new"}},
      {"text behind a carriage return", "news\rold\n", {"news"}, {"news"}},
      {"only a carriage return", "\r\nnews\n", {""}, {"", "news"}},
      {"only a carriage return and a word", "\r\n", {"n"}, {}},
      {"the last line loses its last character without a line feed", "old\nnews", {"new"}, {"new"}},
      {"a last line of one character is lost", "news\nn", {"n"}, {"news"}},
      {"blanks count", "new york\n news\n", {"new "}, {"new york"}},
      {"nothing is escaped", "<b>R&D \"x\"</b>\n", {"<B>r&"}, {"<b>R&D \"x\"</b>"}},
      {"percent signs", "100%s %n\n", {"100%"}, {"100%s %n"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Answer(c.file, c.words, Settings()), Items(c.suggestions));
  }
}

TEST(AutoComplete, LongLinesAreReadInPieces) {
  const struct {
    const char* what;
    int32_t lineLength;
    std::string file;
    std::vector<std::string> suggestions;  // for an empty word
  } cases[] = {
      {"ten characters in pieces of seven", 8, "abcdefghij\n", {"abcdef", "hij"}},
      {"the longest line that stays whole", 8, "abcdef\nx\n", {"abcdef", "x"}},
      {"one more", 8, "abcdefg\nx\n", {"abcdef", "x"}},
      {"two more", 8, "abcdefgh\nx\n", {"abcdef", "h", "x"}},
      {"30 characters", 32, "123456789012345678901234567890\n", {"123456789012345678901234567890"}},
      {"31 characters",
       32,
       "1234567890123456789012345678901\n",
       {"123456789012345678901234567890"}},
      {"pieces of two bytes", 3, "abcd\n", {"a", "c"}},
      {"pieces of one byte", 2, "abcd\n", {}},
      {"a length below 2 counts as 2", 0, "abcd\n", {}},
      {"the greatest length", INT32_MAX, "abcd\n", {"abcd"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    settings.MaxKeyWordLineLen = c.lineLength;
    EXPECT_EQ(Answer(c.file, {""}, settings), Items(c.suggestions));
  }
}

TEST(AutoComplete, PieceBehindTheFirstIsASuggestionOfItsOwn) {
  Settings settings;
  settings.MaxKeyWordLineLen = 8;
  EXPECT_EQ(Answer("abcdefghij\n", {"h"}, settings), Item("hij"));
}

TEST(AutoComplete, AccentedLettersInUtf8) {
  Settings settings;
  settings.UseUTF8 = 1;
  const std::string file = "\u00C9lan\n\u00E9cole\nelan\n";
  EXPECT_EQ(Answer(file, {"\u00E9"}, settings), Items({"\u00C9lan", "\u00E9cole"}));
  EXPECT_EQ(Answer(file, {"\u00C9L"}, settings), Items({"\u00C9lan"}));
  settings.UseUTF8 = 0;
  EXPECT_EQ(Answer(file, {"\u00E9"}, settings), Items({"\u00E9cole"}));
}

TEST(AutoComplete, AccentedLettersInSingleBytesAreNotFolded) {
  EXPECT_EQ(Answer("\xC9lan\n\xE9lan\n", {"\xE9"}, Settings()), Items({"\xE9lan"}));
}

TEST(AutoComplete, CaseIsFoldedWhateverTheSearchDoes) {
  Settings settings;
  settings.ToLowerSearchWords = 0;
  EXPECT_EQ(Answer("News\n", {"nEWS"}, settings), Items({"News"}));
}

TEST(AutoComplete, NoLimitOnTheNumberOfItems) {
  std::string file;
  std::vector<std::string> suggestions;
  for (int i = 0; i < 1000; ++i) {
    suggestions.push_back("word " + std::to_string(i));
    file += suggestions.back() + "\n";
  }
  EXPECT_EQ(Answer(file, {"word"}, Settings()), Items(suggestions));
}

TEST(AutoComplete, FileThatCannotBeOpened) {
  constexpr char kMessage[] =
      "Can not find the vela_autocomplete.vdat index file.<br />Please make sure the generated "
      "index files are uploaded to the same path as this search script.<br />Also check file "
      "permissions have been set to allow reading.<br />";
  OpenDirectory site;
  for (bool xml : {false, true}) {
    CapturedResponse captured(xml);
    EXPECT_FALSE(WriteAutoComplete(captured.response, site.directory, Settings(), Words{"n"}));
    EXPECT_EQ(captured.Text(), kMessage);
  }
  std::filesystem::create_directory(site.scratch.path() / "vela_autocomplete.vdat");
  CapturedResponse captured;
  EXPECT_FALSE(WriteAutoComplete(captured.response, site.directory, Settings(), Words{"n"}));
  EXPECT_EQ(captured.Text(), kMessage);
}

TEST(PrefixMatches, Table) {
  const struct {
    const char* what;
    const char* text;
    const char* word;
    bool utf8;
    bool matches;
  } cases[] = {
      {"equal", "news", "news", false, true},
      {"a beginning", "news", "ne", false, true},
      {"no beginning", "news", "ew", false, false},
      {"a longer word", "ne", "news", false, false},
      {"an empty word", "news", "", false, true},
      {"both empty", "", "", false, true},
      {"an empty text", "", "n", false, false},
      {"case", "NEWS", "ne", false, true},
      {"case of the word", "news", "NE", false, true},
      {"accents in UTF-8", "\u00C9lan", "\u00E9l", true, true},
      {"accents in single bytes", "\u00C9lan", "\u00E9l", false, false},
      {"half a letter in UTF-8", "\u00C9lan", "\xC3", true, true},
      {"another letter in UTF-8", "\u00C8lan", "\u00E9", true, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(PrefixMatches(c.text, c.word, c.utf8), c.matches);
  }
}

}  // namespace
}  // namespace vela
