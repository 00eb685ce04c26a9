#include "indexer/collect/suggestion_list.h"

#include <gtest/gtest.h>

#include "indexer/collect/page_cutter.h"
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

void AddPage(SuggestionList& list, const PageContent& page, const std::string& title) {
  static const IndexCharset utf8;
  PageSuggestions offered = SuggestionsOf(page, title);
  PageWords words;
  PageCutter cutter(utf8, -1, {});
  ASSERT_TRUE(cutter.Cut({.content = page, .title = title}, words, &offered.running));
  list.AddPage(offered);
}

TEST(SuggestionList, TitlesHeadingsAndFrequentPhrases) {
  SuggestionList list;
  AddPage(list, Page("Opening", "Our story time is free."), "Children | Town Library");
  AddPage(list, Page("Story", "The story time, and more."), "Visit | Town Library");
  AddPage(list, Page("Dinner time", "Story time ends."), "Contact | Town Library");
  AddPage(list, Page("Opening", "Your story. Time flies"), "Children | Town Library");
  // Titles: Children is that of two pages, of the others the shorter one is first. Headings:
  // Opening is on two pages. Phrases on three pages whose edges begin or end titles and headings:
  // story time, as the third page writes it.
  EXPECT_EQ(list.Take(""), (Texts{"Children", "Visit", "Contact", "Opening", "Story", "Dinner time",
                                  "Story time"}));
}

TEST(SuggestionList, AHeadingCountsOnceAPage) {
  SuggestionList list;
  PageContent twice = Page("Twice", "x");
  twice.body.push_back({"Twice", 2});
  twice.body.push_back({"Twice", 3});
  AddPage(list, twice, "");
  AddPage(list, Page("Once", "x"), "");
  AddPage(list, Page("Once", "x"), "");
  EXPECT_EQ(list.Take(""), (Texts{"Once", "Twice"}));  // on two pages, and on one
}

TEST(SuggestionList, NoTwoDifferInCaseAlone) {
  SuggestionList list;
  AddPage(list, Page("ABOUT US", "x"), "About us");
  AddPage(list, Page("", "x"), "about us");
  EXPECT_EQ(list.Take(""), Texts{"About us"});
}

TEST(SuggestionList, NothingThatWouldEndAScript) {
  SuggestionList list;
  AddPage(list, Page("", "x"), "The \"best\" of C:\\temp");
  EXPECT_EQ(list.Take(""), Texts{"The best of C: temp"});
}

TEST(SuggestionList, APhraseGoesOnlyWhereNoLongerOneSaysTheSame) {
  SuggestionList list;
  AddPage(list, Page("annual book sale", "see annual book sale now"), "One");
  AddPage(list, Page("Our book", "see annual book sale now"), "Two");
  AddPage(list, Page("", "see annual book sale now"), "Three");
  // "annual book" and "book sale" end and begin as headings do. The longer one says the former.
  EXPECT_EQ(list.Take(""),
            (Texts{"One", "Two", "Three", "annual book sale", "Our book", "book sale"}));
}

TEST(SuggestionList, WithoutWhatTemplatesPutAround) {
  SuggestionList list;
  for (const char* title : {"7. Input \u2014 Manual 3.1", "Chapter 5. Nets \u2014 Manual 3.1",
                            "Ends \u2014 Manual 3.1", "Alone \u2014 at last"}) {
    AddPage(list, Page("3.2.1. Names\u00B6", "x"), title);
  }
  EXPECT_EQ(list.Take(""), (Texts{"Ends", "Nets", "Input", "Alone \u2014 at last", "Names"}));
}

TEST(SuggestionList, NoPhraseWithAStopWordAtItsEdge) {
  SuggestionList list;
  for (const char* title : {"About", "Sale", "Three"}) {
    PageContent page = Page("", "book sale about town");
    page.body.push_back({"Book tickets", 2});
    AddPage(list, page, title);
  }
  EXPECT_EQ(list.Take("the about"), (Texts{"Sale", "About", "Three", "Book tickets", "book sale"}));
}

TEST(SuggestionList, NoPhraseThatIsOnMostPages) {
  SuggestionList list;
  for (int i = 0; i < 10; ++i) {
    AddPage(list, Page("Town sale", i < 5 ? "town sale, book sale" : "town sale"), "Book town");
  }
  // "town sale" is a heading as well; "book sale" is on five pages of ten, "sale" alone no phrase.
  EXPECT_EQ(list.Take(""), (Texts{"Book town", "Town sale", "book sale"}));
  SuggestionList more;
  for (int i = 0; i < 10; ++i) {
    AddPage(more, Page("Town sale", i < 6 ? "town sale, book sale" : "town sale"), "Book town");
  }
  EXPECT_EQ(more.Take(""), (Texts{"Book town", "Town sale"}));
}

TEST(SuggestionList, NamesThatListsDefine) {
  SuggestionList list;
  PageContent page;
  page.body.push_back({"class json.Encoder(*, skipkeys=False)", 0, "json.Encoder"});
  page.body.push_back({"virtual machine", 0, "term-vm"});
  page.body.push_back({"not led to", 0});
  AddPage(list, page, "Library");
  EXPECT_EQ(list.Take(""), (Texts{"Library", "json.Encoder", "virtual machine"}));
}

TEST(SuggestionList, NotTheTitleAgain) {
  SuggestionList list;
  PageContent page;
  page.body.push_back({"town(1) Manual Page", 1});
  page.body.push_back({"town(1) Options", 2});
  AddPage(list, page, "town(1)");
  EXPECT_EQ(list.Take(""), (Texts{"town(1)", "town(1) Options"}));
}

TEST(SuggestionList, EveryTitle) {
  SuggestionList list;
  const std::string longer = "One title " + std::string(60, 'a') + " " + std::string(60, 'b');
  AddPage(list, Page("", "x"), "io");
  AddPage(list, Page("", "x"), longer);
  EXPECT_EQ(list.Take(""), (Texts{"io", "One title " + std::string(60, 'a')}));
}

TEST(SuggestionList, ManyTextsStayBounded) {
  SuggestionList list;
  for (int i = 0; i < 100000; ++i) {
    AddPage(list, Page("", "x"), i % 2 == 0 ? "Common title" : "Title " + std::to_string(i));
  }
  const Texts texts = list.Take("");
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
