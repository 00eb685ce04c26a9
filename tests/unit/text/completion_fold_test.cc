#include "text/completion_fold.h"

#include <gtest/gtest.h>

#include <string>

namespace vela {
namespace {

std::string Folded(std::string text) {
  text.resize(FoldForCompletion(text.data(), text.size()));
  return text;
}

TEST(FoldForCompletion, Table) {
  const struct {
    const char* what;
    const char* text;
    const char* expected;
  } cases[] = {
      {"case", "Opening HOURS", "opening hours"},
      {"beyond ASCII", "\u00DCber \u042F", "\u00FCber \u044F"},
      {"signs and blanks part words", " (Read) & \"write\",\tthen?", "read write then"},
      {"signs beyond ASCII, too", "\u201Cjson\u201D \u2014 JSON\u2026", "json json"},
      {"joints stay", "git-add json.load __init__", "git-add json.load __init__"},
      {"no sign is left of signs alone", "?!\u2014", ""},
      {"broken bytes are no words",
       "a\xFF"
       "b\xC3",
       "a b"},
      {"empty", "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Folded(c.text), c.expected);
  }
}

TEST(HoldsBeginning, Table) {
  const struct {
    const char* what;
    const char* folded;
    const char* word;
    bool expected;
  } cases[] = {
      {"the first word", "read files", "re", true},
      {"a later one", "read files", "fi", true},
      {"not inside of a word", "read files", "ad", false},
      {"a part of a joined word", "call json.load", "lo", true},
      {"not the joint", "call json.load", ".lo", false},
      {"a second place that begins a word", "abc bc", "bc", true},
      {"any character of Japanese", "\u8A2D\u5B9A", "\u5B9A", true},
      {"behind a word of another script", "debian\u8A2D\u5B9A", "\u8A2D", true},
      {"Cyrillic has blanks", "\u043A\u043E\u0442", "\u043E", false},
      {"more than there is", "re", "read", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(HoldsBeginning(c.folded, c.word), c.expected);
  }
}

}  // namespace
}  // namespace vela
