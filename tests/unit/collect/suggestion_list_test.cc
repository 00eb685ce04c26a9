#include "indexer/collect/suggestion_list.h"

#include <gtest/gtest.h>

#include "indexer/write/autocomplete_writer.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

using Texts = std::vector<std::string>;

PageContent Page(const std::string& heading, const std::string& text) {
  PageContent page;
  if (!heading.empty()) page.body.push_back({heading, 2});
  page.body.push_back({text, 0});
  return page;
}

TEST(SuggestionList, TitlesHeadingsAndFrequentPhrases) {
  SuggestionList list;
  list.AddPage(Page("Opening", "Our story time is free."), "Children | Town Library");
  list.AddPage(Page("Story", "The story time, and more."), "Visit | Town Library");
  list.AddPage(Page("Dinner time", "Story time ends."), "Contact | Town Library");
  list.AddPage(Page("Opening", "Your story. Time flies"), "Children | Town Library");
  // Children: 4 + 4. Opening: 2 + 2; the title Contact and Visit: 4. Phrases on three pages whose
  // edges begin or end titles and headings: story time, 3, as the third page writes it. Others: 2.
  EXPECT_EQ(list.Take(), (Texts{"Children", "Contact", "Opening", "Visit", "Story time",
                                "Dinner time", "Story"}));
}

TEST(SuggestionList, AHeadingCountsOnceAPage) {
  SuggestionList list;
  PageContent twice = Page("Twice", "x");
  twice.body.push_back({"Twice", 2});
  twice.body.push_back({"Twice", 3});
  list.AddPage(twice, "");
  list.AddPage(Page("Once", "x"), "");
  list.AddPage(Page("Once", "x"), "");
  EXPECT_EQ(list.Take(), (Texts{"Once", "Twice"}));  // 2 + 2, and 2
}

TEST(SuggestionList, NoTwoDifferInCaseAlone) {
  SuggestionList list;
  list.AddPage(Page("ABOUT US", "x"), "About us");
  list.AddPage(Page("", "x"), "about us");
  EXPECT_EQ(list.Take(), Texts{"About us"});
}

TEST(SuggestionList, NothingThatWouldEndAScript) {
  SuggestionList list;
  list.AddPage(Page("", "x"), "The \"best\" of C:\\temp");
  EXPECT_EQ(list.Take(), Texts{"The best of C: temp"});
}

TEST(SuggestionList, APhraseGoesOnlyWhereNoLongerOneSaysTheSame) {
  SuggestionList list;
  list.AddPage(Page("annual book sale", "see annual book sale now"), "One");
  list.AddPage(Page("Our book", "see annual book sale now"), "Two");
  list.AddPage(Page("", "see annual book sale now"), "Three");
  // 2 as a heading and 3 for the pages that hold it; "book sale" 3; the titles 4; "Our book" 2.
  EXPECT_EQ(list.Take(),
            (Texts{"annual book sale", "One", "Three", "Two", "book sale", "Our book"}));
}

TEST(SuggestionList, ManyTextsStayBounded) {
  SuggestionList list;
  for (int i = 0; i < 100000; ++i) {
    list.AddPage(Page("", "x"), i % 2 == 0 ? "Common title" : "Title " + std::to_string(i));
  }
  const Texts texts = list.Take();
  EXPECT_EQ(texts.front(), "Common title");
  EXPECT_LE(texts.size(), 40000u);
}

TEST(AutocompleteWriter, WritesLinesThatFit) {
  const support::ScratchDirectory scratch;
  const Texts texts = {"first", "12345678", "123456789", "R&D", "caf\u00E9", "last"};
  const AutocompleteSizes sizes =
      WriteAutocomplete(scratch.path() / "a", texts, 4, 10, IndexCharset());
  EXPECT_EQ(ReadFile(scratch.path() / "a"), "first\n12345678\nR&#38;D\ncaf\u00E9\n");
  EXPECT_EQ(sizes.lines, 4u);
  EXPECT_EQ(sizes.fileBytes, 29u);
  WriteAutocomplete(scratch.path() / "b", Texts{"caf\u00E9", "\u0142"}, 9, 20,
                    IndexCharset("windows-1252"));
  EXPECT_EQ(ReadFile(scratch.path() / "b"), "caf\xE9\n");
}

}  // namespace
}  // namespace vela::indexer
