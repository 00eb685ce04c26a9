#include "indexer/report/summary.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(Summary, SaysWhatTheRunDid) {
  IndexSummary summary;
  summary.pages = 1;
  summary.words = 12345;
  summary.sourceBytes = 999;
  summary.indexBytes = 1250000;
  EXPECT_EQ(SummaryText(summary, "public/search", 1.25),
            "Indexed 1 page with 12,345 different words in 1.2 seconds.\n"
            "Read 999 bytes, wrote 1.2 MB to public/search.\n");
}

TEST(Summary, TellsOfAllThatFoundNoUse) {
  IndexSummary summary;
  summary.pages = 2;
  summary.runs = 3;
  AddLeftOut(summary.files, Reason::kNoindex, "a\x1B[2J.html");
  for (const char* name : {"1", "2", "3", "4"}) AddLeftOut(summary.files, Reason::kCopy, name);
  AddLeftOut(summary.metaValues, Reason::kNoAmount, "a.html", "price", "cheap");
  AddLeftOut(summary.remarks, Reason::kNotWellFormed, "a.xhtml", {}, "line 3: mismatched tag");
  summary.siteNames = {"My\x1BSite"};
  summary.sharedTitle = "Untitled";
  summary.repeatedTexts = {"We use cookies to make this better"};
  AddLeftOut(summary.similar, Reason::kSimilar, "b.html", {}, "https://x.example/a.html");
  summary.warnings.push_back({Reason::kUnusedCategory, {}, "News"});
  EXPECT_EQ(SummaryText(summary, "i", 60),
            "Indexed 2 pages with 0 different words in 60.0 seconds.\n"
            "Read 0 bytes, wrote 0 bytes to i.\n"
            "The memory for words was full 3 times; more of it (--memory) makes this faster.\n"
            "Left out 5 files:\n"
            "  4  copy of another page (canonical address): 1, 2, 3, ...\n"
            "  1  noindex: a?[2J.html\n"
            "Meta elements that do not fit their field:\n"
            "  1  price: no amount: a.html (\"cheap\")\n"
            "Taken off titles (site_name): My?Site.\n"
            "Most pages are called \"Untitled\": their headings are shown in its place "
            "(site_name).\n"
            "Left out of most pages (repeated_text): We use cookies to make this better\n"
            "Indexed, though near_duplicates = \"leave_out\" would not:\n"
            "  1  nearly the same text as another page: b.html (\"https://x.example/a.html\")\n"
            "Remarks on pages that are in the index:\n"
            "  1  no well-formed XHTML, read as HTML: a.xhtml (\"line 3: mismatched tag\")\n"
            "Warning: the category \"News\" fits no page.\n");
}

TEST(Summary, TellsWhatIsNoContent) {
  IndexSummary summary;
  summary.content = {.excluded = 1200, .excludingPages = 30, .chosenPages = 2};
  const std::string text = SummaryText(summary, "i", 1);
  EXPECT_NE(text.find("Not content, as you say: 1,200 parts of 30 pages.\n"
                      "Of 2 pages only the parts that you chose are in the index.\n"),
            std::string::npos)
      << text;
  summary.content = {.excluded = 1, .excludingPages = 1, .chosenPages = 1};
  const std::string one = SummaryText(summary, "i", 1);
  EXPECT_NE(one.find("Not content, as you say: 1 part of 1 page.\n"
                     "Of 1 page only the parts that you chose are in the index.\n"),
            std::string::npos)
      << one;
}

TEST(Summary, NamesTheKindsThatAreNotRead) {
  IndexSummary summary;
  for (const char* ending : {".zip", ".dwg", ".zip", ""}) {
    AddLeftOut(summary.otherKinds, Reason::kOtherKind, "x", ending);
  }
  EXPECT_NE(SummaryText(summary, "i", 1)
                .find("Not read, being no kind of page: 2 .zip, 1 without an ending, 1 .dwg.\n"),
            std::string::npos);
  for (char c = 'a'; c <= 'h'; ++c) {
    AddLeftOut(summary.otherKinds, Reason::kOtherKind, "x", std::string(".z") + c);
  }
  EXPECT_NE(SummaryText(summary, "i", 1).find(".ze, 3 of other kinds.\n"), std::string::npos)
      << SummaryText(summary, "i", 1);
}

TEST(Summary, ShortensLongPathsBetweenCharacters) {
  IndexSummary summary;
  const std::string middle(30, 'm');
  const std::string longest = std::string(20, 'a') + "mmm" + std::string(40, 'z');
  AddLeftOut(summary.files, Reason::kNoText, longest);
  AddLeftOut(summary.files, Reason::kNoText,
             std::string(19, 'a') + "ü" + middle + "ü" + std::string(39, 'z'));
  EXPECT_NE(SummaryText(summary, "i", 1)
                .find("no text: " + longest + ", " + std::string(19, 'a') + "..." +
                      std::string(39, 'z') + "\n"),
            std::string::npos)
      << SummaryText(summary, "i", 1);
}

}  // namespace
}  // namespace vela::indexer
