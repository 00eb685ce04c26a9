#include "indexer/extract/page_anchors.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

// "ADDRESS#FRAGMENT=TEXT" of each link, then the places, a line each.
std::string Anchors(std::string_view html) {
  ReadingBudget budget;
  const PageAnchors anchors = AnchorsOf(html, "https://x.example/a/b.html", budget);
  std::string lines;
  for (const AnchorLink& link : anchors.links) {
    lines += link.address + "#" + link.fragment + "=" + link.text + "\n";
  }
  for (const std::string& place : anchors.places) lines += place + "\n";
  return lines;
}

TEST(PageAnchors, TellWhereLinksLeadAndWhatTheySay) {
  const struct {
    const char* what;
    const char* html;
    const char* lines;
  } kCases[] = {
      {"a link", "<a href=c.html>See  <b>C</b></a> and", "https://x.example/a/c.html#=See C\n"},
      {"with a fragment", "<a href='../#d'>D</a>", "https://x.example/#d=D\n"},
      {"on its own page", "<a href='#d'>D</a>", "#d=D\n"},
      {"to the page itself", "<a href=''>nothing</a>", ""},
      {"a picture's text", "<a href=c><img alt=Picture></a>", "https://x.example/a/c#=Picture\n"},
      {"an area", "<area href=c alt=Part>text", "https://x.example/a/c#=Part\n"},
      {"a link without an end", "<a href=c>one<a href=d>two",
       "https://x.example/a/c#=one\nhttps://x.example/a/d#=two\n"},
      {"not of the web", "<a href=mailto:x@y.example>x</a><a href=tel:1>1</a>", ""},
      {"another base", "<base href=/q/><a href=c>c</a>", "https://x.example/q/c#=c\n"},
      {"in a comment and a script", "<!--<a href=c>--><script>'<a href=c>'</script>", ""},
      {"references", "<a href='c?a=1&amp;b=2'>&lt;</a>", "https://x.example/a/c?a=1&b=2#=<\n"},
      {"places", "<p id=one><a name='two'><h1 id='a&amp;b'>x", "one\ntwo\na&b\n"},
      {"a name elsewhere is none", "<input name=q><meta name=robots>", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Anchors(c.html), c.lines);
  }
}

TEST(PageAnchors, CutLongTextsBetweenCharacters) {
  std::string text = "x";
  while (text.size() < 1000) text += "\xC3\xA4";
  const std::string lines = Anchors("<a href=c>" + text + "</a>");
  // 199 bytes: the 200th would be the first half of a letter.
  EXPECT_EQ(lines, "https://x.example/a/c#=" + text.substr(0, 199) + "\n");
}

}  // namespace
}  // namespace vela::indexer
