#include "index/autocomplete.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::OpenDirectory;

std::vector<std::string> SuggestionsOf(std::string_view file, const Settings& settings) {
  OpenDirectory site;
  site.Write("vela_autocomplete.vdat", file);
  SuggestionReader reader;
  EXPECT_EQ(reader.Open(site.directory, settings), LoadStatus::kOk);
  std::vector<std::string> suggestions;
  std::string_view suggestion;
  while (reader.Next(suggestion)) suggestions.emplace_back(suggestion);
  return suggestions;
}

TEST(SuggestionReader, LongLinesAreReadInPieces) {
  const struct {
    const char* what;
    int32_t lineLength;
    std::string file;
    std::vector<std::string> suggestions;
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
    EXPECT_EQ(SuggestionsOf(c.file, settings), c.suggestions);
  }
}

TEST(SuggestionReader, FileThatCannotBeOpened) {
  OpenDirectory site;
  SuggestionReader reader;
  EXPECT_EQ(reader.Open(site.directory, Settings()), LoadStatus::kCannotOpen);
  std::filesystem::create_directory(site.scratch.path() / "vela_autocomplete.vdat");
  EXPECT_EQ(reader.Open(site.directory, Settings()), LoadStatus::kCannotOpen);
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
