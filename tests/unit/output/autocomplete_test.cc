#include "output/autocomplete.h"

#include <gtest/gtest.h>

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
  SuggestionReader suggestions;
  EXPECT_EQ(suggestions.Open(site.directory, settings), LoadStatus::kOk);
  WriteAutoComplete(captured.response, suggestions, words, IsUtf8(settings));
  return captured.Text();
}

TEST(WriteAutoComplete, LinesTable) {
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

TEST(WriteAutoComplete, PieceBehindTheFirstIsASuggestionOfItsOwn) {
  Settings settings;
  settings.MaxKeyWordLineLen = 8;
  EXPECT_EQ(Answer("abcdefghij\n", {"h"}, settings), Item("hij"));
}

TEST(WriteAutoComplete, AccentedLettersInUtf8) {
  Settings settings;
  settings.UseUTF8 = 1;
  const std::string file = "\u00C9lan\n\u00E9cole\nelan\n";
  EXPECT_EQ(Answer(file, {"\u00E9"}, settings), Items({"\u00C9lan", "\u00E9cole"}));
  EXPECT_EQ(Answer(file, {"\u00C9L"}, settings), Items({"\u00C9lan"}));
  settings.UseUTF8 = 0;
  EXPECT_EQ(Answer(file, {"\u00E9"}, settings), Items({"\u00E9cole"}));
}

TEST(WriteAutoComplete, AccentedLettersInSingleBytesAreNotFolded) {
  EXPECT_EQ(Answer("\xC9lan\n\xE9lan\n", {"\xE9"}, Settings()), Items({"\xE9lan"}));
}

TEST(WriteAutoComplete, CaseIsFoldedWhateverTheSearchDoes) {
  Settings settings;
  settings.ToLowerSearchWords = 0;
  EXPECT_EQ(Answer("News\n", {"nEWS"}, settings), Items({"News"}));
}

TEST(WriteAutoComplete, NoLimitOnTheNumberOfItems) {
  std::string file;
  std::vector<std::string> suggestions;
  for (int i = 0; i < 1000; ++i) {
    suggestions.push_back("word " + std::to_string(i));
    file += suggestions.back() + "\n";
  }
  EXPECT_EQ(Answer(file, {"word"}, Settings()), Items(suggestions));
}

}  // namespace
}  // namespace vela
