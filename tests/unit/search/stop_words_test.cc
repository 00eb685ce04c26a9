#include "search/stop_words.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/failing_allocation.h"

namespace vela {
namespace {

using Terms = std::vector<std::string>;

Settings SettingsWith(std::string_view stopWords) {
  Settings settings;
  Set(settings.WordJoinChars, "-");
  settings.AllowExactPhrase = 1;
  Set(settings.StopWords, stopWords);
  return settings;
}

Terms Kept(const std::string& text, const Settings& settings) {
  Query query;
  Set(query.typed, text);
  EXPECT_TRUE(ParseQuery(query, settings));
  EXPECT_TRUE(DropStopWords(query.terms, View(query.text), settings, query.dropped));
  return {query.terms.terms.begin(), query.terms.terms.end()};
}

TEST(StopWords, AreDroppedBesideAnotherWord) {
  const struct {
    const char *what, *query;
    Terms kept;
  } kCases[] = {
      {"a question", "what is a tuple", {"tuple"}},
      {"at the end", "tuple is a", {"tuple"}},
      {"part of a word", "area what-is", {"area", "what-is"}},
      {"nothing else", "what is a", {"what", "is", "a"}},
      {"only one of them", "is", {"is"}},
      {"beside an exclusion", "is -tuple", {"is", "-tuple"}},
      {"beside a restriction", "what site:docs", {"what", "site:docs"}},
      {"beside a word and a restriction", "a list site:docs", {"list", "site:docs"}},
      {"an exclusion", "tuple -a", {"tuple", "-a"}},
      {"inside a phrase", "a \"what is a tuple\"", {"what is a tuple"}},
      {"in quotes of its own", "tuple \"a\"", {"tuple", "a"}},
      {"a pattern", "tuple a*", {"tuple", "a*"}},
      {"beside empty quotes", "a \"\"", {"a", ""}},
      {"nothing", "", {}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Kept(c.query, SettingsWith("a is what")), c.kept);
  }
}

TEST(StopWords, WhatWasDroppedHasItsPlace) {
  Query query;
  Set(query.typed, "what is a tuple -is in list a");
  const Settings settings = SettingsWith("a is what");
  ASSERT_TRUE(ParseQuery(query, settings));
  ASSERT_TRUE(DropStopWords(query.terms, View(query.text), settings, query.dropped));
  Terms places;
  for (const DroppedWord& dropped : query.dropped) {
    places.push_back(std::to_string(dropped.place) + " " + std::string(dropped.word));
  }
  // Terms: tuple, in, list, -is.
  EXPECT_EQ(places, (Terms{"0 what", "0 is", "0 a", "3 a"}));
}

TEST(StopWords, NoneAreDroppedWithoutTheKey) {
  EXPECT_EQ(Kept("a tuple", SettingsWith("")), (Terms{"a", "tuple"}));
}

TEST(StopWords, AWordTooShortToSearchForIsNoOther) {
  Settings settings = SettingsWith("what");
  settings.MinWordLen = 3;
  EXPECT_EQ(Kept("what ab", settings), (Terms{"what", "ab"}));
  EXPECT_EQ(Kept("what abc", settings), (Terms{"abc"}));
}

TEST(StopWords, TheQueryStaysAsItWasWithoutMemory) {
  const Settings settings = SettingsWith("a");
  Query query;
  Set(query.typed, "a tuple");
  ASSERT_TRUE(ParseQuery(query, settings));
  g_failAllocationNumber = 1;
  EXPECT_FALSE(DropStopWords(query.terms, View(query.text), settings, query.dropped));
  g_failAllocationNumber = 0;
  EXPECT_EQ(query.terms.size(), 2);
}

}  // namespace
}  // namespace vela
