#include "text/sign_cut.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "support/failing_allocation.h"

namespace vela {
namespace {

std::string Cut(std::string text, bool utf8 = true) {
  text.resize(CutAtSigns(text.data(), text.size(), utf8));
  return text;
}

TEST(SignCut, CutsQueries) {
  const struct {
    const char *what, *query, *cut;
  } kCases[] = {
      {"a plain query", "cats dogs", "cats dogs"},
      {"signs with a meaning", "cats -dogs +c++ c# node.js g?y wor* \"a b\"",
       "cats -dogs +c++ c# node.js g?y wor* \"a b\""},
      {"signs that the words are separated at", "a/b (c) d's e&f", "a/b (c) d's e&f"},
      {"angle brackets", "<branch>", " branch "},
      {"a semicolon", "merge;", "merge "},
      {"a tilde and a backtick", "HEAD~2 `git`", "HEAD 2  git "},
      {"an equals sign", "a=b", "a b"},
      {"an ellipsis", "merge\u2026", "merge "},
      {"dashes", "merge\u2013conflict \u2014 x", "merge conflict   x"},
      {"a no-break hyphen", "e\u2011mail", "e-mail"},
      {"blanks of all widths", "a\u3000b\u00A0c\u2009d\u2028e", "a b c d e"},
      {"line ends and control characters",
       "a\tb\r\nc\x01"
       "d\x7F"
       "e",
       "a b  c d e"},
      {"what cannot be seen", "in\u00ADdex\u200B\uFEFF", "index"},
      {"broken bytes",
       "a\xFF"
       "b\xE2\x80",
       "a b  "},
      {"an emoji beside a word", "go\U0001F680", "go "},
      {"an emoji alone", "go \U0001F680", "go \U0001F680"},
      {"a picture of several characters alone", "\U0001F468\u200D\U0001F469",
       "\U0001F468\u200D\U0001F469"},
      {"a picture of several characters beside a word", "x\U0001F468\u200D\U0001F469", "x   "},
      {"emoji and another sign", "\U0001F680\u2026", "\U0001F680 "},
      {"emoji with a hyphen", "\U0001F680-\U0001F680", "\U0001F680-\U0001F680"},
      {"curly quotes around a word", "\u201Cmerge\u201D", "\"merge\" "},
      {"curly quotes around words", "a \u201Cmerge conflict\u201D b", "a  \"merge conflict\"  b"},
      {"low quotes", "\u201Emerge conflict\u201C", "\"merge conflict\" "},
      {"the same quote twice", "\u201Dmerge conflict\u201D", "\"merge conflict\" "},
      {"guillemets", "\u00ABmerge conflict\u00BB", "\"merge conflict\" "},
      {"guillemets with blanks", "\u00AB\u00A0merge conflict\u00A0\u00BB", "\" merge conflict \" "},
      {"guillemets the other way", "\u00BBmerge conflict\u00AB", "\"merge conflict\" "},
      {"guillemets as separators", "home \u00BB docs \u00BB merge", "home   docs   merge"},
      {"corner brackets inside text", "a\u300Cb c\u300Dd", "a \"b c\" d"},
      {"an excluded phrase", "a -\u201Cb c\u201D", "a -\"b c\" "},
      {"a curly and a straight quote", "\u201Cmerge conflict\"", "\"merge conflict\""},
      {"a straight and a curly quote", "\"merge conflict\u201D", "\"merge conflict\" "},
      {"curly quotes inside straight ones", "\"a \u201Cb c\u201D d\"", "\"a  b c  d\""},
      {"a curly quote before straight ones", "\u201Ca \"b c\" d", " a \"b c\" d"},
      {"a lone curly quote", "24\u201D screen", "24  screen"},
      {"two lengths in inches", "24\u201D or 27\u201D", "24  or 27 "},
      {"single quotes around words", "\u2018merge conflict\u2019", "\"merge conflict\" "},
      {"single quotes around a word", "rock \u2018n\u2019 roll", "rock  n  roll"},
      {"apostrophes", "it\u2019s the library\u2019s", "it s the library s"},
      {"a word left out at the front", "\u2018tis nobody\u2019s", " tis nobody s"},
      {"a hyphen behind a bracket", "x[-1] (-obj) '--help' {-a} n=-1", "x[1] (obj) 'help' {a} n 1"},
      {"a hyphen before a bracket", "(re-)use f->x", "(re)use f x"},
      {"a hyphen in curly quotes", "\u201C--help\u201D \u2018--help\u2019", "\"help\"   help "},
      {"hyphens behind words", "pre- and post-- war", "pre  and post   war"},
      {"hyphens at the end", "pre-", "pre-"},
      {"hyphens alone", "a - b -- c", "a   b    c"},
      {"signs alone", "a * b ? c # d ++ e", "a   b   c   d    e"},
      {"a pattern of everything", "*", "*"},
      {"full stops", "3.11 .net v1.* x.? the end... end.", "3.11 .net v1.* x.? the end    end "},
      {"underscores", "a_b __init__ x_.y ____x", "a_b __init   x .y     x"},
      {"a restriction", "site:example.org url:a_b", "site:example.org url:a_b"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Cut(c.query), c.cut);
  }
}

TEST(SignCut, InASingleByteSetOnlyAsciiIsKnown) {
  EXPECT_EQ(Cut("\x93gr\xFC\xDF;\x94 <b>", false), "\x93gr\xFC\xDF \x94  b ");
}

TEST(SignCut, TheTextStaysWithoutMemory) {
  for (int32_t n = 1; n <= 2; ++n) {
    g_failAllocationNumber = n;
    EXPECT_EQ(Cut("a;b"), "a;b");
  }
  g_failAllocationNumber = 0;
}

TEST(SignCut, NothingGrowsAndEveryTextEnds) {
  const std::string pieces[] = {"a",      "b",      " ",      "-",      "\"",         "\u201C",
                                "\u201D", "\u2018", "\u2019", "\u00AB", "\u00BB",     "\u300C",
                                "\u300D", "\u2026", ";",      "\u200D", "\U0001F680", "\uFE0F",
                                "\xFF",   "\xE2",   ".",      "_",      "(",          ")"};
  std::mt19937 random(20261122);
  for (int round = 0; round < 50000; ++round) {
    std::string text;
    for (size_t i = random() % 12; i > 0; --i) text += pieces[random() % std::size(pieces)];
    const std::string cut = Cut(text);
    ASSERT_LE(cut.size(), text.size()) << text;
    ASSERT_LE(Cut(cut).size(), cut.size()) << text;
    ASSERT_EQ(cut.find("\xFF"), cut.npos) << text;
  }
}

}  // namespace
}  // namespace vela
