// What of a page is its content, when its owner says so.
#include "indexer/extract/content_choice.h"

#include <gtest/gtest.h>

#include "indexer/extract/html_page.h"
#include "indexer/extract/markdown_page.h"
#include "indexer/extract/xhtml_page.h"
#include "indexer/words/clean_text.h"

namespace vela::indexer {
namespace {

std::vector<ElementSelector> Selectors(std::string_view text) {
  SelectorFault fault;
  std::vector<ElementSelector> selectors;
  if (!text.empty()) selectors = ParseSelectors(text, fault);
  EXPECT_EQ(fault.what, "");
  return selectors;
}

SiteConfig ConfigOf(std::string_view exclude, std::string_view only) {
  SiteConfig config;
  config.content.excludeElements = Selectors(exclude);
  config.content.onlyElements = Selectors(only);
  uint32_t number = 0;
  for (ElementSelector& each : config.content.excludeElements) each.number = number++;
  for (ElementSelector& each : config.content.onlyElements) each.number = number++;
  return config;
}

PageContent PageOf(std::string_view html, const SiteConfig& config) {
  const ContentChoices choices(config, "https://x.example/");
  ReadingBudget budget;
  PageContent page;
  EXPECT_EQ(ParseHtmlPage(html, budget, page, choices.Of("https://x.example/a.html")),
            Reason::kNone);
  return page;
}

// The text as one line, headings as "<level>text".
std::string TextOf(const PageContent& page) {
  std::string text;
  for (const TextRun& run : page.body) {
    if (run.headingLevel != 0) text += "<" + std::to_string(run.headingLevel) + ">";
    text += run.text + " ";
  }
  return CollapseBlanks(text);
}

std::string BodyOf(std::string_view html, const SiteConfig& config = {}) {
  return TextOf(PageOf(html, config));
}

TEST(ContentChoice, LeavesElementsOut) {
  const struct {
    const char* what;
    const char* exclude;
    const char* html;
    const char* expected;
  } kCases[] = {
      {"a class", ".ad", "<p>a<p class=ad>b<p>c", "a c"},
      {"all that is inside", ".ad", "<div class=ad>b<p>c<h1>d</h1></div>e", "e"},
      {"in an element", "#side p", "<p>a</p><div id=side>b<p>c</p></div>", "a b"},
      {"a picture", "[src*=track]", "<p>a <img src=/track.gif alt=b> c", "a c"},
      {"inside of a word", ".no", "in<span class=no>x</span>dex", "index"},
      {"also where the element is implied", "tbody", "<table><caption>a<tr><td>b</table>c", "a c"},
      {"what a table puts before itself", "table i",
       "<table class=t><i>before</i><tr><td>a <i>b</i></table>", "before a"},
      {"a formatting element that is ended in the middle", "b .ad",
       "<b>a<p>b</b><span class=ad>c</span>d", "a bcd"},
      {"the body", "body", "<p>a", ""},
      {"an element of a formula", "annotation", "<math><mi>x</mi><annotation>y</annotation></math>",
       "x"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BodyOf(c.html, ConfigOf(c.exclude, "")), c.expected);
  }
}

TEST(ContentChoice, TakesOnlyChosenElements) {
  const struct {
    const char* what;
    const char* only;
    const char* html;
    const char* expected;
  } kCases[] = {
      {"one", ".text", "<h1>a</h1><div class=text>b<h2>c</h2></div>d", "b <2>c"},
      {"several", "p", "a<p>b</p>c<p>d", "b d"},
      {"words of two that are beside each other stay apart", "b", "<b>a</b>-<b>c</b><b>d</b>",
       "a cd"},
      {"in an element", "#main p", "<p>a</p><div id=main>b<p>c</p></div>", "c"},
      {"where there is none, all", ".text", "<p>a<p>b", "a b"},
      {"where it is empty, all", ".text", "<p>a<p class=text> </p>b", "a b"},
      {"what surrounds the content otherwise", "footer", "<p>a</p><footer>b</footer>", "b"},
      {"navigation", ".toc", "<p>a</p><nav class=toc>b</nav>", "b"},
      {"a header in it belongs to it", ".text",
       "<div class=text><header>a</header>b<aside>c</aside></div>", "a b c"},
      {"nothing hidden", ".text", "<p class=text hidden>a</p><p class=text>b", "b"},
      {"nothing in navigation", "nav p", "<nav><p>a</p></nav>b", "b"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BodyOf(c.html, ConfigOf("", c.only)), c.expected);
  }
  EXPECT_EQ(BodyOf("<div class=text>a<p class=ad>b</p>c</div>d", ConfigOf(".ad", ".text")), "a c");
}

TEST(ContentChoice, PagesSayItThemselves) {
  const struct {
    const char* what;
    const char* html;
    const char* expected;
  } kCases[] = {
      {"what is ignored", "<p>a<p data-vela-ignore>b<p>c", "a c"},
      {"the body", "<p>a<div data-vela-body>b</div>c<p DATA-VELA-BODY>d", "b d"},
      {"ignored in the body", "<div data-vela-body>a<i data-vela-ignore>b</i></div>c", "a"},
      {"the body in what is ignored", "<div data-vela-ignore><p data-vela-body>a</div>b", "b"},
      {"both at once", "<p data-vela-ignore data-vela-body>a</p>b", "b"},
      {"remarks", "<p>a<!-- vela:off --><p>b<!--vela:on--><p>c", "a c"},
      {"remarks across elements", "<div>a<p>b<!-- vela:off -->c</div><div>d<!-- vela:on -->e</div>",
       "a b e"},
      {"remarks inside of a word", "in<!--vela:off--> x <!--vela:on-->dex", "index"},
      {"to the end", "<p>a<!-- vela:off --><p>b", "a"},
      {"off twice", "a<!--vela:off-->b<!--vela:off-->c<!--vela:on-->d", "ad"},
      {"on alone", "a<!--vela:on-->b", "ab"},
      {"another remark", "a<!-- vela:offer -->b<!-- vela: off -->c", "abc"},
      {"a remark in a script", "a<script>'<!-- vela:off -->'</script>b", "ab"},
      {"a remark in a template", "a<template><!-- vela:off --></template>b", "ab"},
      {"what is no remark", "a<!vela:off>b<?vela:off>c", "abc"},
      {"a heading that begins where it is off", "<!--vela:off--><h1>a<!--vela:on-->b</h1>c",
       "<1>b c"},
      {"pictures", "a<!--vela:off--><img alt=b><!--vela:on-->c", "a c"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BodyOf(c.html), c.expected);
  }
}

TEST(ContentChoice, XhtmlAndMarkdownSayItToo) {
  const SiteConfig config = ConfigOf("b[data-x='1']", "");
  const ContentChoices choices(config, "https://x.example/");
  ReadingBudget budget;
  PageContent page;
  std::string fault;
  EXPECT_EQ(ParseXhtmlPage("<html><body><p>a<!-- vela:off --></p><p>b<!-- vela:on -->c"
                           "<i data-vela-ignore=''>d</i><b data-x='1'>e</b></p></body></html>",
                           budget, page, fault, choices.Of("https://x.example/")),
            Reason::kNone);
  EXPECT_EQ(fault, "");
  EXPECT_EQ(TextOf(page), "a c");
  EXPECT_EQ(page.use.excluded, 3u);
  EXPECT_EQ(ParseMarkdownPage("One\n\n<!-- vela:off -->\n\nTwo\n\n<!-- vela:on -->\n\n*Three* "
                              "<b data-x=1>four</b>\n",
                              budget, page, choices.Of("https://x.example/")),
            Reason::kNone);
  EXPECT_EQ(TextOf(page), "One Three");
}

TEST(ContentChoice, TheNavigationCanBeContent) {
  SiteConfig config;
  const std::string html =
      "<nav>a <a href=/b>b</a></nav><div role=menu>c</div><form role=search>d</form>e <a "
      "href=/f>f</a>";
  EXPECT_EQ(BodyOf(html, config), "e f");
  config.content.indexesNavigation = true;
  const PageContent page = PageOf(html, config);
  EXPECT_EQ(TextOf(page), "a b c e f");
  ASSERT_EQ(page.links.size(), 1u);  // those in the navigation name nothing
  EXPECT_EQ(page.links[0].address, "/f");
  EXPECT_EQ(page.linkShare, 0.5F);
}

TEST(ContentChoice, TheMainPartCanBeAll) {
  SiteConfig config;
  const std::string page = "<div>beside</div><main>the text</main><div role=main>and more</div>end";
  EXPECT_EQ(BodyOf(page, config), "beside the text and more end");
  config.content.prefersMain = true;
  EXPECT_EQ(BodyOf(page, config), "the text and more");
  // 2 bytes of 8 are a fourth part, of 9 they are less.
  EXPECT_EQ(BodyOf("<p>abcdef</p><main>gh</main>", config), "gh");
  EXPECT_EQ(BodyOf("<p>abcdefghijkl</p><main>mn</main>", config), "abcdefghijkl mn");
  EXPECT_EQ(BodyOf("<p>a</p><main></main>", config), "a");
  EXPECT_EQ(BodyOf("<main>a<p data-vela-body>b</p></main>", config), "b");
}

TEST(ContentChoice, LinksOutsideOfTheContentNameNothing) {
  const std::string html =
      "<a href=/1>one</a><div class=x><a href=/2>two</a></div><p class=y><a href=/3>three</a> and "
      "text";
  const PageContent excluded = PageOf(html, ConfigOf(".x", ""));
  ASSERT_EQ(excluded.links.size(), 2u);
  EXPECT_EQ(excluded.links[1].text, "three");
  const PageContent chosen = PageOf(html, ConfigOf("", ".y"));
  ASSERT_EQ(chosen.links.size(), 1u);
  EXPECT_EQ(chosen.links[0].address, "/3");
  EXPECT_EQ(chosen.linkShare, 5.0F / 12.0F);
  EXPECT_TRUE(PageOf("<!--vela:off--><a href=/1>one</a><!--vela:on-->a", {}).links.empty());
}

// "ADDRESS: TEXT|" of each.
std::string PicturesOf(std::string_view html, SiteConfig config = {}) {
  config.endings[static_cast<size_t>(FileType::kPicture)] = {"jpg"};
  std::string all;
  for (const PagePicture& each : PageOf(html, config).pictures) {
    all += each.address + ": " + each.text + "|";
  }
  return all;
}

TEST(ContentChoice, PicturesOfTheContentHaveTexts) {
  const std::string html = "<main><img src=a.jpg alt='A heron'></main> text";
  EXPECT_TRUE(PageOf(html, {}).pictures.empty());  // unless pictures are pages
  const struct {
    const char *what, *html, *expected;
  } kCases[] = {
      {"a picture", "<img src=a.jpg alt='A heron'>", "a.jpg: A heron|"},
      {"its text on one line", "<img src=a.jpg alt=' A\n&auml;  heron '>",
       "a.jpg: A \u00E4 heron|"},
      {"an empty text", "<img src=a.jpg alt=''><img src=a.jpg alt=' '><img src=a.jpg>", ""},
      {"no address", "<img alt=x><img src='' alt=y>", ""},
      {"an area is none", "<map><area href=a.jpg alt=x></map>", ""},
      {"the small one of a large one", "<a href=l.jpg><b><img src=s.jpg alt=x></b></a>",
       "s.jpg: x|l.jpg: x|"},
      {"behind the link", "<a href=l.jpg>l</a><img src=s.jpg alt=x>", "s.jpg: x|"},
      {"each time", "<img src=a.jpg alt=x><p><img src=a.jpg alt=x>", "a.jpg: x|a.jpg: x|"},
      {"what the page leaves out", "<p data-vela-ignore><img src=a.jpg alt=x>", ""},
      {"its own attribute", "<img src=a.jpg alt=x data-vela-ignore>", ""},
      {"between remarks", "<!--vela:off--><img src=a.jpg alt=x><!--vela:on-->", ""},
      {"hidden", "<div hidden><img src=a.jpg alt=x></div>", ""},
      {"a template", "<template><img src=a.jpg alt=x></template>", ""},
      {"navigation", "<nav><img src=a.jpg alt=x></nav>text", ""},
      {"what surrounds the content", "<header><img src=a.jpg alt=x></header><p>text", ""},
      {"a header in the content", "<article><header><img src=a.jpg alt=x></header></article>",
       "a.jpg: x|"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(PicturesOf(c.html), c.expected);
  }
  EXPECT_EQ(PicturesOf("<p class=x><img src=a.jpg alt=x></p>", ConfigOf(".x", "")), "");
  EXPECT_EQ(PicturesOf("<img src=a.jpg alt=x><p class=y><img src=b.jpg alt=y>text</p>",
                       ConfigOf("", ".y")),
            "b.jpg: y|");
}

TEST(ContentChoice, LongTextsOfPicturesAreCutBetweenCharacters) {
  const std::string text = std::string(kPictureTextLimit - 1, 'x') + "\u00E4 and more";
  const std::string kept(kPictureTextLimit - 1, 'x');
  EXPECT_EQ(PicturesOf("<img src=a.jpg alt='" + text + "'>"), "a.jpg: " + kept + "|");
  EXPECT_EQ(PicturesOf("<img src=a.jpg alt='" + kept + "y'>"), "a.jpg: " + kept + "y|");
}

TEST(ContentChoice, WhatIsNotContentStillSaysTheFactsOfThePage) {
  const PageContent page = PageOf(
      "<title>T</title><div data-vela-ignore><time datetime=2026-03-05>5 March</time></div>"
      "<!-- vela:off --><meta name=author content=A>",
      {});
  EXPECT_EQ(page.title, "T");
  EXPECT_EQ(page.time, "2026-03-05");
  EXPECT_EQ(MetaContent(page, "author"), "A");
  EXPECT_TRUE(page.body.empty());
}

TEST(ContentChoice, WordsWeighAsTheOwnerSays) {
  const struct {
    const char* what;
    const char* html;
    uint8_t expected;  // of the run "x"
  } kCases[] = {
      {"text", "<p>x", 0},
      {"a heading", "<h3>x</h3>", 3},
      {"text like a heading", "<div data-vela-weight=2><p>x</p></div>", 2},
      {"a heading of more weight", "<div data-vela-weight=3><h1>x</h1></div>", 1},
      {"a heading of less weight", "<div data-vela-weight=3><h5>x</h5></div>", 3},
      {"a heading like text", "<div data-vela-weight=0><h1>x</h1></div>", 0},
      {"the innermost counts", "<div data-vela-weight=1><p data-vela-weight=6>x</div>", 6},
      {"no such weight", "<p data-vela-weight=7>x", 0},
      {"no number", "<h2 data-vela-weight=much>x</h2>", 2},
      {"nothing", "<h2 data-vela-weight>x</h2>", 2},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    const PageContent page = PageOf(c.html, {});
    ASSERT_EQ(page.body.size(), 1u);
    EXPECT_EQ(WeightLevel(page.body[0]), c.expected);
  }
}

TEST(ContentChoice, TellsWhatCameOfIt) {
  const SiteConfig config = ConfigOf(".a, .never", ".b");
  EXPECT_EQ(PageOf("<p class=a>x<p class=a>x<i class=a></i></p><p class=b>y", config).use,
            (ContentUse{.excluded = 2, .isChosen = true, .selectors = {0, 2}}));
  EXPECT_EQ(PageOf("text", config).use, (ContentUse{.lacksChosen = true}));
  EXPECT_EQ(PageOf("a<!--vela:off-->", {}).use, (ContentUse{.excluded = 1, .isLeftOff = true}));
  EXPECT_EQ(PageOf("a<!--vela:off-->b<!--vela:on-->", {}).use, (ContentUse{.excluded = 1}));
  EXPECT_EQ(PageOf("a<p data-vela-body>b", {}).use, (ContentUse{.isChosen = true}));
}

TEST(ContentChoice, TheFirstRuleThatFitsAPageHolds) {
  SiteConfig config = ConfigOf(".site", "");
  config.contentRules = {{.pages = {"news/*"}, .indexesNavigation = true},
                         {.pages = {"*/old/*", "/x"}, .prefersMain = true}};
  const ContentChoices choices(config, "https://x.example/docs/");
  EXPECT_EQ(choices.Of("https://x.example/docs/a.html").rule, 0u);
  EXPECT_FALSE(choices.Of("https://x.example/docs/a.html").selectors.empty());
  EXPECT_EQ(choices.Of("https://x.example/docs/news/old/a.html").rule, 1u);
  EXPECT_TRUE(choices.Of("https://x.example/docs/news/a.html").indexesNavigation);
  EXPECT_TRUE(choices.Of("https://x.example/docs/news/a.html").selectors.empty());
  EXPECT_EQ(choices.Of("https://x.example/docs/b/old/a.html").rule, 2u);
  EXPECT_EQ(choices.Of("https://x.example/x").rule, 2u);
}

}  // namespace
}  // namespace vela::indexer
