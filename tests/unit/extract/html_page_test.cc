#include "indexer/extract/html_page.h"

#include <gtest/gtest.h>

#include "indexer/words/clean_text.h"

namespace vela::indexer {
namespace {

// The text of a page as one line, headings as "<level>text", blanks collapsed.
std::string BodyOf(const std::string& html) {
  PageContent page;
  EXPECT_EQ(ParseHtmlPage(html, page), Reason::kNone);
  std::string text;
  for (const TextRun& run : page.body) {
    if (run.headingLevel != 0) text += "<" + std::to_string(run.headingLevel) + ">";
    text += run.text + " ";
  }
  return CollapseBlanks(text);
}

TEST(HtmlPage, TakesTheTextAndLeavesTheRest) {
  const struct {
    const char* what;
    std::string html, expected;
  } kCases[] = {
      {"blocks end words, inline elements do not", "<p>one<b>two</b></p><p>three<br>four",
       "onetwo three four"},
      {"cells and items are apart", "<table><tr><td>a<td>b</table><ul><li>c<li>d</ul>", "a b c d"},
      {"headings are known", "<h1>Top</h1>text<h3>Sub <i>part</i></h3>more",
       "<1>Top text <3>Sub part more"},
      {"scripts, styles, templates",
       "a<script>x=1</script><style>p{}</style><template>t</template><noscript>n</noscript>b",
       "ab"},
      {"form controls", "a <select><option>one</select><textarea>t</textarea><button>go</button> b",
       "a b"},
      {"alternative texts stand where the picture is", "see <img alt='a red boat' src=x> there",
       "see a red boat there"},
      {"an empty alternative text says nothing", "see <img alt='' src=x>there", "see there"},
      {"navigation", "<nav>menu</nav><p>text<div role=navigation>menu</div>", "text"},
      {"header and footer of the page", "<header>site</header><p>text<footer>imprint</footer>",
       "text"},
      {"header and footer of an article stay",
       "<article><header>by me</header>text<footer>sources</footer></article>",
       "by me text sources"},
      {"header inside main stays", "<div role=main><header>intro</header>text</div>", "intro text"},
      {"asides of the page", "<aside>advert</aside><main>text<aside>note</aside></main>",
       "text note"},
      {"roles of what surrounds",
       "<div role=banner>b</div><div role='contentinfo x'>c</div>text"
       "<div role=complementary>d</div><form role=search><label>e</label></form>",
       "text"},
      {"hidden parts", "<p hidden>a<p style='display : none'>b<p aria-hidden=true>c<p>d", "d"},
      {"a link for skipping to the content", "<a href=#main>Skip</a><p>text <a href=#x>to x</a>",
       "text to x"},
      {"nothing but a frame: the frame counts", "<header>only this</header>", "only this"},
      {"comments", "a<!-- b -->c", "ac"},
      {"entities", "<p>caf&eacute; &amp; &#x201C;bar&#8221;", "caf\u00E9 & \u201Cbar\u201D"},
      {"drawings and formulas",
       "<svg><title>t</title><text>drawn</text></svg><math><mi>x</mi></math>", "t drawn x"},
      {"soft hyphens inside a word", "in&shy;dex", "index"},
      {"a text without any markup", "just words", "just words"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BodyOf(c.html), c.expected);
  }
}

TEST(HtmlPage, ReadsTheHead) {
  PageContent page;
  EXPECT_EQ(ParseHtmlPage("<head><title>\n A &amp; B\n</title><title>second</title>"
                          "<meta NAME=Description content=' What  it is '>"
                          "<link rel='alternate canonical' href='/a.html'>"
                          "<link rel=canonical href='/b.html'><base href='/c/'>"
                          "<body>text",
                          page),
            Reason::kNone);
  EXPECT_EQ(page.title, "A & B");
  EXPECT_EQ(page.description, "What it is");
  EXPECT_EQ(page.canonical, "/a.html");
  EXPECT_EQ(page.base, "/c/");
}

TEST(HtmlPage, TheTitleOfADrawingIsNotThePages) {
  PageContent page;
  EXPECT_EQ(ParseHtmlPage("<svg><title>drawing</title></svg>text", page), Reason::kNone);
  EXPECT_EQ(page.title, "");
}

TEST(HtmlPage, TakesTheSocialDescriptionWhereThereIsNoOther) {
  PageContent page;
  EXPECT_EQ(ParseHtmlPage("<meta property=og:description content=shared>x", page), Reason::kNone);
  EXPECT_EQ(page.description, "shared");
  EXPECT_EQ(ParseHtmlPage("<meta property=og:description content=shared>"
                          "<meta name=description content=own>x",
                          page),
            Reason::kNone);
  EXPECT_EQ(page.description, "own");
}

TEST(HtmlPage, HonoursNoindex) {
  const struct {
    const char* content;
    Reason reason;
  } kCases[] = {{"noindex", Reason::kNoindex},        {"NOINDEX, nofollow", Reason::kNoindex},
                {"follow,noindex", Reason::kNoindex}, {"none", Reason::kNoindex},
                {"index, follow", Reason::kNone},     {"nofollow", Reason::kNone},
                {"noindexing", Reason::kNone},        {"", Reason::kNone}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.content);
    PageContent page;
    EXPECT_EQ(ParseHtmlPage(std::string("<meta name=Robots content='") + c.content + "'>x", page),
              c.reason);
  }
}

TEST(HtmlPage, GivesUpOnMarkupWithoutEnd) {
  const auto repeat = [](const char* text, int32_t count) {
    std::string all;
    for (int32_t i = 0; i < count; ++i) all += text;
    return all;
  };
  PageContent page;
  EXPECT_EQ(ParseHtmlPage(repeat("<div>", 100000), page), Reason::kMarkupTooDeep);
  EXPECT_EQ(ParseHtmlPage(repeat("<div>", 1900) + "deep", page), Reason::kNone);
  EXPECT_EQ(page.body.size(), 1u);
  // Elements whose end tags may be left out do not count as nested.
  EXPECT_EQ(ParseHtmlPage(repeat("<li><p>word ", 20000), page), Reason::kNone);
  EXPECT_EQ(ParseHtmlPage(repeat("<", 100000), page), Reason::kNone);
  // Many open formatting elements that the parser has to repeat in every paragraph.
  std::string markup;
  for (int32_t i = 0; i < 1500; ++i) markup += "<p><b a=" + std::to_string(i) + "></p>";
  EXPECT_EQ(ParseHtmlPage(markup + repeat("<p>x</p>", 20000), page), Reason::kMarkupTooLarge);
}

}  // namespace
}  // namespace vela::indexer
