#include "indexer/words/heading_text.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(PlainHeading, Table) {
  const struct {
    const char* what;
    const char* heading;
    const char* expected;
  } cases[] = {
      {"as it is", "Opening hours", "Opening hours"},
      {"the sign that links to it", "Names\u00B6", "Names"},
      {"with a blank", "Names \u00B6", "Names"},
      {"a number sign that links to it", "Names #", "Names"},
      {"a name that ends in one", "Learning C#", "Learning C#"},
      {"one line", " More  than one ", "More than one"},
      {"a number", "7. Input and Output", "Input and Output"},
      {"of several levels", "3.2.1. Numbers", "Numbers"},
      {"in brackets", "2) Steps", "Steps"},
      {"a version is no number of a part", "3.11.2 Documentation", "3.11.2 Documentation"},
      {"nor is an amount", "2 ways home", "2 ways home"},
      {"nor a year", "2026. What is new", "What is new"},
      {"a named part", "Chapter 5. Networks", "Networks"},
      {"in German", "Kapitel 10. Datenmanagement", "Datenmanagement"},
      {"with a letter", "Anhang A. Anhang", "Anhang"},
      {"with a colon", "Part IV: The end", "The end"},
      {"without a stop", "Section 4 Names", "Names"},
      {"a word that only begins a heading", "Chapter houses", "Chapter houses"},
      {"nothing would be left", "Chapter 5.", "Chapter 5."},
      {"nothing but a number", "2.7", "2.7"},
      {"a letter alone is no number", "A. Nonymous", "A. Nonymous"},
      {"empty", "", ""},
      {"the sign alone", "\u00B6", "\u00B6"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(PlainHeading(c.heading), c.expected);
  }
}

}  // namespace
}  // namespace vela::indexer
