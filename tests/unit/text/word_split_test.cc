// word_split_test.cc: which characters end a word.

#include "text/word_split.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vela {
namespace {

std::string Separate(std::string_view input, std::string_view joinChars = "") {
  std::string text(input);
  const size_t length = SeparateWords(text.data(), text.size(), joinChars);
  EXPECT_LE(length, text.size());
  text.resize(length);
  return text;
}

TEST(WordSplit, PlusesExclusionAndHyphenInOneQuery) {
  EXPECT_EQ(Separate("g++ -cats e-mail"), "g++ -cats e mail");
}

TEST(WordSplit, TheSitePrefixSurvivesTheSecondColonDoesNot) {
  EXPECT_EQ(Separate("site:example time:now"), "site:example time now");
}

TEST(WordSplit, ATrailingCommaOrFullStopIsRemoved) {
  EXPECT_EQ(Separate("hello,"), "hello ");
  EXPECT_EQ(Separate("hello."), "hello ");
  EXPECT_EQ(Separate("hello,", ","), "hello");
  EXPECT_EQ(Separate("hello.", "."), "hello");
}

// A text without any of the signs is left at once; with one of them, whichever it is, it is not.
TEST(WordSplit, EverySignAloneEndsAWord) {
  for (const char sign : std::string_view(".-#+_'$,:&/\\@()^[]|{}%!")) {
    SCOPED_TRACE(sign);
    EXPECT_EQ(Separate(std::string("ab") + sign + "cd"), "ab cd");
  }
}

TEST(WordSplit, Separates) {
  const struct {
    const char* what;
    std::string_view input;
    std::string_view joinChars;
    std::string_view expected;
  } cases[] = {
      {"nothing", "", "", ""},
      {"blanks stay", "  a  b ", "", "  a  b "},
      {"quotes and wildcards stay", "\"a b\" c*d?", "", "\"a b\" c*d?"},
      {"other punctuation stays", "a;b=c<d>e~f`g", "", "a;b=c<d>e~f`g"},
      {"bytes from 0x80 up stay", "caf\xC3\xA9", "", "caf\xC3\xA9"},
      // Full stop.
      {"a full stop", "3.14", "", "3 14"},
      {"a joining full stop", "3.14", ".", "3.14"},
      {"a joining full stop at a word's end", "hello. world", ".", "hello world"},
      {"two joining full stops lose one", "a.. b", ".", "a. b"},
      // Hyphen.
      {"a hyphen inside", "e-mail", "", "e mail"},
      {"a joining hyphen", "e-mail", "-", "e-mail"},
      {"a leading hyphen", "-a", "", "-a"},
      {"a hyphen behind a blank", "a -b", "", "a -b"},
      {"a hyphen at the end", "a-", "", "a "},
      {"a hyphen before a blank", "a- b", "", "a  b"},
      {"two leading hyphens lose the second", "--a", "", "- a"},
      {"two inner hyphens lose the first", "a--b", "", "a -b"},
      {"a hyphen behind a replaced full stop", "a.-b", "", "a -b"},
      {"a hyphen alone", "-", "", "-"},
      // Hash.
      {"a hash at the end", "c#", "", "c#"},
      {"a hash at a word's end", "c# d", "", "c# d"},
      {"a hash inside", "c#d", "", "c d"},
      {"a leading hash", "#tag", "", " tag"},
      {"a joining hash", "#tag c#d", "#", "#tag c#d"},
      {"two hashes at the end lose the first", "c##", "", "c #"},
      {"a hash alone", "#", "", "#"},
      // Plus.
      {"one plus at the end", "c+", "", "c "},
      {"two pluses at the end", "c++", "", "c++"},
      {"two pluses at a word's end", "c++ d", "", "c++ d"},
      {"three pluses at the end", "c+++", "", "c+++"},
      {"one plus inside", "c+d", "", "c d"},
      {"two pluses inside", "c++d", "", "c  d"},
      {"a leading plus", "+a", "", " a"},
      {"a plus alone", "+", "", " "},
      {"two pluses alone", "++", "", "++"},
      {"a joining plus", "c+d e+", "+", "c+d e+"},
      {"a plus behind a replaced hash", "a#+b", "", "a  b"},
      // One kind each.
      {"underscore, apostrophe, dollar, comma", "a_b'c$d,e", "", "a b c d e"},
      {"the same, joining", "a_b'c$d,e", "_'$,", "a_b'c$d,e"},
      {"ampersand, slash, backslash, at", "a&b/c\\d@e", "", "a b c d e"},
      {"the same, joining", "a&b/c\\d@e", "&/\\@", "a&b/c\\d@e"},
      {"brackets and the like", "(a)^[b]|{c}%!", "", " a   b   c   "},
      {"never joining", "(a)^[b]|{c}%!", "()^[]|{}%!", " a   b   c   "},
      // Colon and prefixes.
      {"a colon", "a:b", "", "a b"},
      {"a joining colon", "a:b", ":", "a:b"},
      {"a joining colon at a word's end", "a: b", ":", "a b"},
      {"a colon at the end", "a:", "", "a "},
      {"the url prefix", "url:docs", "", "url:docs"},
      {"a scheme", "http://x", "", "http   x"},
      {"a prefix inside a word", "xsite:y curl:z", "", "xsite:y curl:z"},
      {"an excluded prefix", "-site:x", "", "-site:x"},
      {"a prefix before a blank loses its colon", "site: x", "", "site x"},
      {"a prefix at the end loses its colon", "a site:", "", "a site"},
      {"a second colon behind a prefix", "site::x", "", "site x"},
      {"a prefix is spelled in small letters", "Site:x", "", "Site x"},
      {"a marker in the query becomes the prefix", "[#@!]x [#@]y", "#", "site:x url:y"},
      // Joining characters at a word's end, in their order.
      {"every one before a blank", "a_ b' c$ d. e, f: g& h/ i\\ j", "_'$.,:&/\\",
       "a b c d e f g h i j"},
      {"an at sign before a blank stays", "a@ b", "@", "a@ b"},
      {"a comma uncovers an apostrophe too late", "a', b", "',", "a' b"},
      {"an apostrophe uncovers a comma in time", "a,' b", "',", "a b"},
      // One final character.
      {"one is dropped at the end", "a.,", ".,", "a."},
      {"underscore", "a_", "_", "a"},
      {"apostrophe", "a'", "'", "a"},
      {"dollar", "a$", "$", "a"},
      {"colon", "a:", ":", "a"},
      {"ampersand", "a&", "&", "a"},
      {"slash", "a/", "/", "a"},
      {"backslash", "a\\", "\\", "a"},
      {"at sign stays", "a@", "@", "a@"},
      {"hyphen stays", "a-", "-", "a-"},
      {"a final character alone", ".", ".", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Separate(c.input, c.joinChars), c.expected);
  }
}

TEST(WordSplit, NothingBehindTheLengthIsTouched) {
  std::string text = "a.b.c.d";
  EXPECT_EQ(SeparateWords(text.data(), 3, ""), 3u);
  EXPECT_EQ(text, "a b.c.d");
}

}  // namespace
}  // namespace vela
