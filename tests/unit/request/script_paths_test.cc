// script_paths_test.cc: where the program stands and where its index is.

#include "request/script_paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "support/scratch_directory.h"

namespace vela {
namespace {

TEST(ScriptPaths, FieldsHoldTheLongestTexts) {
  static_assert(decltype(ScriptPaths::scriptFileName)::kCapacity == 2047);
  static_assert(decltype(ScriptPaths::scriptDirectory)::kCapacity == 511);
  static_assert(decltype(ScriptPaths::scriptUrl)::kCapacity == 2047);
}

TEST(ScriptPaths, APathWithoutSeparatorTakesTheWorkingDirectory) {
  const support::ScratchDirectory scratch;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(scratch.path());
  const std::string here = std::filesystem::current_path().string();
  ScriptPaths paths;
  SplitProgramPath(paths, "search.cgi");
  ScriptPaths empty;
  SplitProgramPath(empty, "");
  std::filesystem::current_path(before);
  EXPECT_EQ(View(paths.scriptFileName), "search.cgi");
  EXPECT_EQ(View(paths.scriptDirectory), here);
  EXPECT_EQ(View(empty.scriptFileName), "");
  EXPECT_EQ(View(empty.scriptDirectory), here);
}

TEST(ScriptPaths, BothKindsOfSeparatorSplitAtTheLastBackslash) {
  ScriptPaths paths;
  SplitProgramPath(paths, "/srv\\site/search.cgi");
  EXPECT_EQ(View(paths.scriptFileName), "site/search.cgi");
  EXPECT_EQ(View(paths.scriptDirectory), "/srv");
}

TEST(ScriptPaths, Splits) {
  const struct {
    const char* what;
    std::string_view path;
    std::string_view fileName;
    std::string_view directory;
  } cases[] = {
      {"slashes", "/srv/site/search.cgi", "search.cgi", "/srv/site"},
      {"relative", "./search.cgi", "search.cgi", "."},
      {"backslashes", "C:\\site\\search.exe", "search.exe", "C:\\site"},
      {"the last of several backslashes", "a\\b\\c/d", "c/d", "a\\b"},
      {"a backslash behind the slash", "/srv/a\\b", "b", "/srv/a"},
      {"in the root", "/search.cgi", "search.cgi", ""},
      {"a slash at the end", "/srv/site/", "", "/srv/site"},
      {"two slashes", "/srv//search.cgi", "search.cgi", "/srv/"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ScriptPaths paths;
    SplitProgramPath(paths, c.path);
    EXPECT_EQ(View(paths.scriptFileName), c.fileName);
    EXPECT_EQ(View(paths.scriptDirectory), c.directory);
  }
}

TEST(ScriptPaths, LongPathsAreCut) {
  ScriptPaths paths;
  SplitProgramPath(paths, std::string(600, 'd') + "/" + std::string(3000, 'f'));
  EXPECT_EQ(View(paths.scriptDirectory), std::string(511, 'd'));
  EXPECT_EQ(View(paths.scriptFileName), std::string(2047, 'f'));
}

// The directory after the arguments, which was "before".
std::string DirectoryOf(const std::vector<const char*>& arguments) {
  ScriptPaths paths;
  Set(paths.scriptDirectory, "before");
  ReadDirectorySwitch(paths, arguments);
  return std::string(View(paths.scriptDirectory));
}

TEST(DirectorySwitch, SmallAndCapitalLetterSetTheDirectory) {
  EXPECT_EQ(DirectoryOf({"/I", "/srv/index"}), "/srv/index");
  EXPECT_EQ(DirectoryOf({"/i", "/srv/index"}), "/srv/index");
}

TEST(DirectorySwitch, ADirectoryOf260CharactersIsIgnored) {
  const std::string shorter(259, 'd');
  const std::string tooLong(260, 'd');
  const std::string farTooLong(5000, 'd');
  EXPECT_EQ(DirectoryOf({"/I", shorter.c_str()}), shorter);
  EXPECT_EQ(DirectoryOf({"/I", tooLong.c_str()}), "before");
  EXPECT_EQ(DirectoryOf({"/I", farTooLong.c_str()}), "before");
  EXPECT_EQ(DirectoryOf({"/I", "first", "/I", tooLong.c_str()}), "first");
}

TEST(DirectorySwitch, Rules) {
  const struct {
    const char* what;
    std::vector<const char*> arguments;
    std::string_view expected;
  } cases[] = {
      {"no arguments", {}, "before"},
      {"other arguments", {"a", "b", "c"}, "before"},
      {"only two characters are looked at", {"/index", "dir"}, "dir"},
      {"in small letters, too", {"/ignore-this", "dir"}, "dir"},
      {"a hyphen is no slash", {"-I", "dir"}, "before"},
      {"another letter", {"/J", "dir"}, "before"},
      {"a slash alone", {"/", "dir"}, "before"},
      {"an empty argument", {"", "dir"}, "before"},
      {"not at the start", {"x/I", "dir"}, "before"},
      {"the last argument is no switch", {"a", "/I"}, "before"},
      {"alone", {"/I"}, "before"},
      {"behind others", {"a", "b", "/I", "dir", "c"}, "dir"},
      {"a later one wins", {"/I", "one", "/i", "two"}, "two"},
      {"an empty directory", {"/I", ""}, ""},
      {"the directory is looked at, too", {"/I", "/Index", "two"}, "two"},
      {"a switch as the directory of a switch", {"/I", "/i"}, "/i"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(DirectoryOf(c.arguments), c.expected);
  }
}

TEST(ArgumentsOfQuery, AreItsDecodedWords) {
  const struct {
    const char* what;
    std::vector<const char*> arguments;
    std::string_view queryString;
    bool expected;
  } cases[] = {
      {"one word", {"word"}, "word", true},
      {"a switch", {"/I", "/tmp/x"}, "/I+/tmp/x", true},
      {"escaped", {"/I", "/tmp/x"}, "%2FI+%2ftmp%2Fx", true},
      {"escaped in part", {"/I", "/tmp/x"}, "%2F%49+/tmp/%78", true},
      {"an escaped plus is no separator", {"a+b"}, "a%2Bb", true},
      {"an escaped percent is decoded once", {"%41"}, "%2541", true},
      {"an escaped equals sign is none", {"a=b"}, "a%3Db", true},
      {"empty words", {"a", "", "b"}, "a++b", true},
      {"an empty last word", {"a", ""}, "a+", true},
      {"fewer arguments than words, as a server with a limit gives", {"a"}, "a+b", true},
      {"fewer, an empty word missing", {"a"}, "a+", true},
      {"no arguments", {}, "a+b", false},
      {"a backslash before a shell character", {"/I", "/tmp/x", "\\;"}, "/I+/tmp/x+;", true},
      {"a backslash that was typed", {"\\\\"}, "%5C", true},
      {"two backslashes typed, both escaped", {"\\\\\\\\"}, "%5C%5C", true},
      {"two backslashes typed, the first escaped", {"\\\\\\"}, "\\\\", true},
      {"two backslashes typed, neither escaped", {"\\\\"}, "\\\\", true},
      {"more backslashes than two for each", {"\\\\\\\\\\"}, "\\\\", false},
      {"backslashes and an escaped byte behind them", {"\\\\\\\\\\;"}, "\\\\;", true},
      {"fewer backslashes than typed", {"\\a"}, "\\\\a", false},
      {"a NUL ends the word", {"/I", "/nowhere"}, "/I+/nowhere%00", true},
      {"a NUL ends the first word", {"/I", "/nowhere"}, "/I%00+/nowhere", true},
      {"what stands behind a NUL is lost", {"/I", "/nowhere"}, "/I%00/x+/nowhere%00+y", true},
      {"a word of a NUL is empty", {"a", "", "b"}, "a+%00+b", true},
      {"empty words left out", {"/I", "/nowhere"}, "+/I++%00+/nowhere", true},
      {"empty words left out in part", {"/I", "", "/nowhere"}, "++/I+++/nowhere", true},
      {"more empty arguments than words", {"a", "", "", "b"}, "a++b", false},
      {"a backslash that was not typed, before another word", {"\\b"}, "a", false},
      {"more arguments than words", {"a", "b"}, "a", false},
      {"more arguments, the last empty", {"a", ""}, "a", false},
      {"other words", {"a", "c"}, "a+b", false},
      {"another order", {"b", "a"}, "a+b", false},
      {"other case", {"/i", "x"}, "/I+x", false},
      {"a beginning of the word", {"a"}, "ab", false},
      {"longer than the word", {"ab"}, "a", false},
      {"not decoded", {"%2FI"}, "%2FI", false},
      {"an equals sign in the query", {"/I", "x=1"}, "/I+x=1", false},
      {"an empty query", {"/I", "x"}, "", false},
      {"an empty query and an empty argument", {""}, "", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(AreArgumentsOfQuery(c.arguments, c.queryString), c.expected);
  }
}

}  // namespace
}  // namespace vela
