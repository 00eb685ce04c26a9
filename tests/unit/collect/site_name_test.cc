#include "indexer/collect/site_name.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

using Texts = std::vector<std::string>;

SiteTitles Titles(const Texts& titles) {
  SiteTitles all;
  for (const std::string& title : titles) all.Add(title);
  return all;
}

TEST(SiteName, IsWhatMostTitlesEndOrBeginIn) {
  const struct {
    const char* what;
    Texts titles;
    Texts names;
  } kCases[] = {
      {"behind the last sign", {"A | S", "B | S", "C - D | S", "E | S", "F | S"}, {"S"}},
      {"every sign is one",
       {"A | S", "B - S", "C \u2013 S", "D \u2014 S", "E :: S", "F \u00B7 S"},
       {"S"}},
      {"before the first sign", {"S - A", "S - B - x", "S - C", "S - D", "S - E"}, {"S"}},
      {"the end before the beginning",
       {"S - A | T", "S - B | T", "S - C | T", "S - D | T", "S - E | T"},
       {"T", "S"}},
      {"parts of a site, one in the other",
       {"A - M - S", "B - M - S", "C - M - S", "D - M - S", "E - M - S"},
       {"S", "M"}},
      {"a page that is called so counts",
       {"A | S", "B | S", "C | S", "D | S", "E | S", "S", "S", "x"},
       {"S"}},
      {"four pages", {"A | S", "B | S", "C | S", "D | S"}, {}},
      {"five of nine", {"A | S", "B | S", "C | S", "D | S", "E | S", "F", "G", "H", "I"}, {}},
      {"six of ten",
       {"A | S", "B | S", "C | S", "D | S", "E | S", "F | S", "G", "H", "I", "J"},
       {"S"}},
      {"a sign needs its blanks", {"A-S", "B-S", "C-S", "D|S", "E|S"}, {}},
      {"no titles", {}, {}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Titles(c.titles).Names(), c.names);
  }
}

TEST(SiteName, IsTakenOffATitle) {
  const struct {
    const char* title;
    Texts names;
    const char* expected;
  } kCases[] = {
      {"A - B | S", {"S"}, "A - B"},
      {"S :: A", {"S"}, "A"},
      {"A - M - S", {"S", "M"}, "A"},
      {"A - M - S", {"M", "S"}, "A - M"},
      {"S", {"S"}, "S"},
      {" | S", {"S"}, " | S"},
      {"S - S", {"S"}, "S"},
      {"AS", {"S"}, "AS"},
      {"A | XS", {"S"}, "A | XS"},
      {"A | S", {}, "A | S"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.title);
    EXPECT_EQ(WithoutSiteName(c.title, c.names), c.expected);
  }
}

TEST(SiteName, ATitleIsSharedByMoreThanHalf) {
  EXPECT_EQ(Titles({"S", "S", "S", "S", "S", "A", "B", "C", "D"}).SharedTitle(), "S");
  EXPECT_EQ(Titles({"S", "S", "S", "S", "S", "A", "B", "C", "D", "E"}).SharedTitle(), "");
  EXPECT_EQ(Titles({"S", "S", "S", "S"}).SharedTitle(), "");
  EXPECT_EQ(Titles({}).SharedTitle(), "");
}

}  // namespace
}  // namespace vela::indexer
