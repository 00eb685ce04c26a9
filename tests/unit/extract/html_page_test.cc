#include "indexer/extract/html_page.h"

#include <gtest/gtest.h>

#include "indexer/words/clean_text.h"

namespace vela::indexer {
namespace {

Reason ParseHtmlPage(std::string_view html, PageContent& page) {
  ReadingBudget budget = StartReading({}, html.size());
  return ParseHtmlPage(html, budget, page);
}

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

// The runs that an address leads to, as "anchor>text".
std::string AnchorsOf(const std::string& html) {
  PageContent page;
  EXPECT_EQ(ParseHtmlPage(html, page), Reason::kNone);
  std::string anchors;
  for (const TextRun& run : page.body) {
    if (run.anchor.empty()) continue;
    anchors += (anchors.empty() ? "" : "|") + run.anchor + ">" + CollapseBlanks(run.text);
  }
  return anchors;
}

TEST(HtmlPage, KnowsWhatAddressesLeadToHeadingsBy) {
  const struct {
    const char* what;
    std::string html, expected;
  } kCases[] = {
      {"its own id", "<h2 id=use>Use</h2>text", "use>Use"},
      {"an id inside", "<h2>How <b id=x>to</b> use</h2>text", "x>How to use"},
      {"the name of an anchor inside", "<h2><a name=old></a>Use</h2>", "old>Use"},
      {"a name of anything else is none", "<form><h2><input name=q>Use</h2></form>", ""},
      {"the block that it begins", "<p>a<section id=s> <div><h2>Use</h2>b</div></section>",
       "s>Use"},
      {"an anchor ahead of it", "<p>a</p><a name=n></a><h2>Use</h2>", "n>Use"},
      {"the block rather than an anchor in it",
       "<p>a</p><section id=s><span id=old></span><h2>Use</h2></section>", "s>Use"},
      {"not a block with text before", "<section id=s>a<h2>Use</h2></section>", ""},
      {"each block once", "<section id=s><h2>One</h2><h2>Two</h2></section>", "s>One"},
      {"two headings beside each other", "<h2 id=a>One</h2><h2 id=b>Two</h2>", "a>One|b>Two"},
      {"a term that is defined", "<dl><dt id=f>f(x)</dt><dd>Does it.</dd><dt>g</dt></dl>",
       "f>f(x)"},
      {"blanks cannot stand in an address", "<h2 id='a b'>Use</h2>", ""},
      {"markup in an id stays what it is", "<h2 id='\"><b>'>Use</h2>", "\"><b>>Use"},
      {"a longer one is none", "<h2 id=" + std::string(201, 'x') + ">Use</h2>", ""},
      {"what is hidden leads nowhere", "<div hidden id=h></div><h2>Use</h2>", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(AnchorsOf(c.html), c.expected);
  }
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
      {"form controls", "a <select><option>one</select><textarea>t</textarea> b", "a b"},
      {"what a button opens, it names", "<button>Opening hours</button>nine<button>Fares</button>",
       "Opening hours nine Fares"},
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

TEST(HtmlPage, TellsWhatOfItsTextIsLinks) {
  const struct {
    const char* what;
    std::string html;
    float share;
  } kCases[] = {
      {"no text", "<p> ", 0},
      {"no link", "<p>four", 0},
      {"a half, blanks aside", "<p>four <a href=x.html> f o u r </a>", 0.5F},
      {"with the markup inside", "<ul><li><a href=x><b>ab</b><i>c</i></a><li>d", 0.75F},
      {"a place on the page is none", "<p>four <a href='#x'>four</a>", 0},
      {"an anchor is none", "<p>four <a name=x>four</a>", 0},
      {"what surrounds the content does not count",
       "<nav><a href=x>menu</a></nav><main>four</main><footer><a href=y>foot</a></footer>", 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    PageContent page;
    EXPECT_EQ(ParseHtmlPage(c.html, page), Reason::kNone);
    EXPECT_FLOAT_EQ(page.linkShare, c.share);
  }
}

// "address: text" of each link, with a line each.
std::string LinksOf(const PageContent& page) {
  std::string links;
  for (const PageLink& link : page.links) links += link.address + ": " + link.text + "\n";
  return links;
}

TEST(HtmlPage, KeepsTheTextsOfLinks) {
  const std::string longest(kLinkTextLimit, 'x');
  const struct {
    const char* what;
    std::string html;
    std::string links;
  } kCases[] = {
      {"in the page's order", "<a href=a>one</a> two <a href=b?c#d>three",
       "a: one\nb?c#d: three\n"},
      {"through the markup inside", "<a href=a>a<b>b</b><i>c</i> d</a>", "a: abc d\n"},
      {"blocks part words", "<a href=a><p>one<p>two</p>three</a>", "a: one two three\n"},
      {"pictures have texts", "<a href=a><img src=x alt='a picture'></a>", "a: a picture\n"},
      {"one without a text names nothing", "<a href=a><img src=x></a> <a href=b> </a>", ""},
      {"one ends where the next begins", "<a href=a>one<a href=b>two</a>three", "a: one\nb: two\n"},
      {"left open at the end", "<a href=a>one", "a: one\n"},
      {"places on the page and anchors are none", "<a href='#x'>x</a><a name=y>y</a>", ""},
      {"hidden text", "<a href=a hidden>x</a><a href=b>one <span hidden>two</span></a>",
       "b: one\n"},
      {"what surrounds the content",
       "<nav><a href=x>menu</a></nav><a href=a>one</a><footer><a href=y>foot</a></footer>",
       "a: one\n"},
      {"what the page does not vouch for", "<a href=a rel='UGC nofollow'>one</a>", ""},
      {"a long text is no name",
       "<a href=a>" + longest + "</a><a href=b>" + longest + "x</a><a href=c>" + longest + longest,
       "a: " + longest + "\n"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    PageContent page;
    EXPECT_EQ(ParseHtmlPage(c.html, page), Reason::kNone);
    EXPECT_EQ(LinksOf(page), c.links);
  }
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

TEST(HtmlPage, WhatIsHidden) {
  const struct {
    const char* what;
    std::string html, expected;
  } kCases[] = {
      {"the back of a turned box", "a<p style='backface-visibility:hidden'>b", "a b"},
      {"until a visitor searches for it", "a<p hidden=until-found>b", "a b"},
      {"the attribute, whatever its value", "a<p hidden=false>b", "a"},
      {"a page that a script shows", "<body style='visibility:hidden'>a", "a"},
      {"one that a script shows otherwise", "<html style='display:none'><body hidden>a", "a"},
      {"inline elements", "a<b hidden>b</b><i style='display:none'>c</i>d", "ad"},
      {"all inside", "a<div hidden><p>b</p><b>c</div>d", "a d"},
      {"a formatting element ends under a block", "<b hidden>a<p>b</b>c", "c"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BodyOf(c.html), c.expected);
  }
}

TEST(HtmlPage, WhatPartsWords) {
  const struct {
    const char* what;
    std::string html, expected;
  } kCases[] = {
      {"the readings of signs are left out", "<ruby>\u6F22<rp>(</rp><rt>kan</rt><rp>)</rp>\u5B57",
       "\u6F22\u5B57"},
      {"elements of the page's own do not", "in<x-mark>dex</x-mark>er", "indexer"},
      {"nor do labels", "in<label>dex</label>", "index"},
      {"unknown elements do", "in<foo>dex</foo>er", "in dex er"},
      {"buttons do", "in<button>dex</button>er", "in dex er"},
      {"an end tag of a paragraph that is not open", "in</p>dex", "in dex"},
      {"a break's end tag", "in</br>dex", "in dex"},
      {"a place for a break does not", "in<wbr>dex", "index"},
      {"drawn texts do", "<svg><text>in</text><text>dex</text></svg>", "in dex"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BodyOf(c.html), c.expected);
  }
}

TEST(HtmlPage, TheHeaderKeepsTheFirstHeading) {
  const struct {
    const char* what;
    std::string html, expected;
  } kCases[] = {
      {"of the page", "<header>site<h1>Fares</h1>menu</header><p>text", "<1>Fares text"},
      {"by its role", "<div role=banner>site<h1>Fares</h1></div><p>text", "<1>Fares text"},
      {"only the first", "<header><h1>Fares</h1><h1>b</h1></header><p>text", "<1>Fares text"},
      {"not when one stands before", "<h1>Fares</h1><header><h1>b</h1></header>text",
       "<1>Fares text"},
      {"only in a header", "<aside><h1>a</h1></aside><p>text", "text"},
      {"not in navigation in a header", "<header><nav><h1>a</h1></nav></header><p>text", "text"},
      {"it alone is no content", "<header>site<h1>Fares</h1>menu</header>", "site <1>Fares menu"},
      {"a link for skipping may follow",
       "<header><h1>Fares</h1></header><a href=#x>skip</a><p>text", "<1>Fares text"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BodyOf(c.html), c.expected);
  }
}

TEST(HtmlPage, ElementsNestAsBrowsersNestThem) {
  const struct {
    const char* what;
    std::string html, expected;
  } kCases[] = {
      {"a paragraph ends before a block", "<p hidden>a<div>b", "b"},
      {"not before a text inside a button", "<p hidden>a<button>b<p>c</button>d", ""},
      {"an item ends the item before", "<ul><li hidden>a<li>b</ul>", "b"},
      {"not that of the list around", "<ul><li hidden>a<ul><li>b</ul></ul>c", "c"},
      {"terms and what they mean", "<dl><dt hidden>a<dd>b<dt hidden>c</dl>d", "b d"},
      {"a heading ends the heading before", "<h1>a<h2>b</h2>c", "<1>a <2>b c"},
      {"with the end tag of another", "<h1>a</h3>b", "<1>a b"},
      {"cells", "<table><tr><td hidden>a<td>b<tr><th>c</table>d", "b c d"},
      {"a table without rows", "<table><td>a</table>b", "a b"},
      {"a table in a table", "<table><td hidden><table><td>a</table>b<td>c</table>d", "c d"},
      {"end tags do not reach out of a cell", "<div hidden><table><td></div>a</table></div>b", "b"},
      {"a caption", "<table><caption hidden>a<tr><td>b</table>", "b"},
      {"columns have no text", "<table><colgroup><col>a<tr><td>b</table>", "a b"},
      {"what a table does not hold stands before it", "<table>1<tr>2<td>a</td>3<p>4</p></table>5",
       "123 4 a 5"},
      {"and goes on with the word there", "in<table>dex<td>er</table>", "index er"},
      {"in a table in a table", "<table>1<td>a<table>2<td>b</table>c</table>", "1 a2 b c"},
      {"blanks stay in the table", "a<table> <tr> <td>b </table>c", "a b c"},
      {"a list of choices ends with its table cell", "<table><td><select><option>a<td>b</table>",
       "b"},
      {"and with an input", "<select><option>a<input>b", "b"},
      {"tags inside are passed over", "<select><div><p></div></p>a</select>b", "b"},
      {"templates", "<template><td>a</td><div></template></div>b", "b"},
      {"a table row in a template", "<table><template><tr><td>a</template><tr><td>b</table>", "b"},
      {"drawings end before a block", "<svg hidden><g><p>a", "a"},
      {"HTML in a drawing", "<svg hidden><foreignObject><p>a</svg>b</p>c</svg>d", "d"},
      {"words of a formula", "<math><mi>a</mi><mo>+</mo><annotation-xml>b</annotation-xml></math>",
       "a + b"},
      {"an old font ends a drawing", "<svg hidden><font size=1>a</font></svg>b", "ab"},
      {"character data of a drawing", "<svg><text><![CDATA[a<b]]></text></svg>", "a<b"},
      {"a link ends the link before", "<a hidden>a<a>b</a>", "b"},
      {"forms do not nest", "<form>a<form hidden>b</form>c", "ab c"},
      {"a form ends under a heading", "<form><h2>a</form>b</h2>c", "<2>ab c"},
      {"text behind the body", "<body>a</body></html>b", "ab"},
      {"a head without tags", "<title>t</title><p>a", "a"},
      {"the head goes on behind its end", "<head></head><title>t</title><p>a", "a"},
      {"frames", "<frameset><frame><noframes>a</noframes></frameset>b", ""},
      {"frames behind text", "a<frameset><frame></frameset>b", "ab"},
      {"what is no longer markup", "a<plaintext><b>&amp;", "a <b>&amp;"},
      {"old listings", "a<xmp><b>&amp;</xmp>c", "a <b>&amp; c"},
      {"scripts run", "a<noscript><p>b</noscript>c", "ac"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BodyOf(c.html), c.expected);
  }
}

TEST(HtmlPage, TheFirstTimeThatSaysOne) {
  const struct {
    const char* what;
    std::string html, expected;
  } kCases[] = {
      {"its attribute", "<time datetime=2026-03-05>March</time>", "2026-03-05"},
      {"its text", "<time> 2026-<b>03</b>-05\n</time>", "2026-03-05"},
      {"hidden, too", "<time hidden>2026-03-05</time>", "2026-03-05"},
      {"the next when it says nothing", "<time> </time><time datetime=2026-03-05>", "2026-03-05"},
      {"one inside", "<time><time datetime=2026-03-05></time></time>", "2026-03-05"},
      {"text goes before one inside", "<time>March<time datetime=2026-03-05></time></time>",
       "March"},
      {"without an end", "<p><time>2026-03-05</p>a", "2026-03-05"},
      {"not of a template", "<template><time>2026-03-05</time></template>", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    PageContent page;
    EXPECT_EQ(ParseHtmlPage(c.html, page), Reason::kNone);
    EXPECT_EQ(page.time, c.expected);
  }
}

TEST(HtmlPage, DatesBesideTheMetaElements) {
  const struct {
    const char* what;
    std::string html;
    std::vector<MetaElement> expected;
  } kCases[] = {
      {"of a time element",
       "<time itemprop=dateModified datetime=2026-03-05>March</time>",
       {{"itemprop:datemodified", "2026-03-05"}}},
      {"by its text, and not the first",
       "<time>today</time><time itemprop=datePublished> 2026-03-05</time>",
       {{"itemprop:datepublished", "2026-03-05"}}},
      {"of another property", "<time itemprop=startDate datetime=2026-03-05>", {}},
      {"of JSON-LD",
       "<script type=application/LD+json>{\"a\":1,\"dateModified\" : \n\"2026-03-05\"}</script >",
       {{"json-ld:a", "1"}, {"json-ld:datemodified", "2026-03-05"}}},
      {"no date there", "<script type=application/ld+json>{\"dateModified\":null}</script>", {}},
      {"in another script",
       "<script>{\"dateModified\":\"2026-03-05\"}</script type=application/ld+json>",
       {}},
      {"in a template",
       "<template><script type=application/ld+json>{\"dateModified\":\"2026-03-05\"}</script>"
       "<time itemprop=dateModified datetime=2026-03-05></template>",
       {}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    PageContent page;
    EXPECT_EQ(ParseHtmlPage(c.html, page), Reason::kNone);
    EXPECT_EQ(page.metas, c.expected);
  }
}

TEST(HtmlPage, HeadElementsCountWhereverTheyStand) {
  PageContent page;
  EXPECT_EQ(ParseHtmlPage("<p>a<base href=/b/><table><link rel=canonical href=/c><tr><td>"
                          "<div hidden><meta name=A content=b></div><title>t</title>"
                          "<template><meta name=d content=e></template>",
                          page),
            Reason::kNone);
  EXPECT_EQ(page.base, "/b/");
  EXPECT_EQ(page.canonical, "/c");
  EXPECT_EQ(page.title, "t");
  ASSERT_EQ(page.metas.size(), 1u);
  EXPECT_EQ(page.metas[0], MetaElement("a", "b"));
}

TEST(HtmlPage, TextBelowTheDeepestLevelStays) {
  std::string html;
  for (int i = 0; i < 2000; ++i) html += "<div>" + std::to_string(i) + "<p>";
  html += "<table><td>deep";
  for (int i = 0; i < 2000; ++i) html += "</div>";
  html += "<nav>left out</nav>end";
  const std::string text = BodyOf(html);
  EXPECT_TRUE(text.starts_with("0 1 2 ")) << text;
  EXPECT_TRUE(text.ends_with(" 1998 1999 deep end")) << text;
}

std::string Repeated(std::string_view text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

// Pages that make readers of HTML slow: each `part` by itself, so many times.
struct HostilePage {
  const char* what;
  std::string before, part, after;
};

uint64_t StepsOf(const HostilePage& page, int count) {
  std::string html = page.before;
  for (int i = 0; i < count; ++i) {
    const size_t number = page.part.find('%');
    html += page.part.substr(0, number);
    if (number != page.part.npos) html += std::to_string(i) + page.part.substr(number + 1);
  }
  html += page.after;
  ReadingBudget budget;
  PageContent content;
  EXPECT_EQ(ParseHtmlPage(html, budget, content), Reason::kNone);
  EXPECT_LT(budget.steps, html.size() * 64);
  return budget.steps;
}

TEST(HtmlPage, TwiceTheMarkupTakesTwiceTheSteps) {
  const HostilePage kPages[] = {
      {"nested", "", "<div>", ""},
      {"end tags that end nothing", "", "<div></x>", ""},
      {"end tags that a cell keeps from their element", "", "<div><table><td></div></table>", ""},
      {"that a list of choices does", "", "<div><select></div></select>", ""},
      {"that a template does", "", "<div><template></div></template>", ""},
      {"that a caption does", "", "<div><table><caption></div></table>", ""},
      {"that an object does", "", "<div><object></div></object>", ""},
      {"that an applet does", "", "<div><applet></div></applet>", ""},
      {"that HTML in a drawing does", "", "<div><svg><desc></div></svg>", ""},
      {"drawings in drawings", "", "<svg><desc>", ""},
      {"a body with ever more attributes", "", "<body b%=1>", ""},
      {"a tag with ever more attributes", "<p", " a%=1", ">"},
      {"the same attribute", "<p", " hidden", ">"},
      {"open times", Repeated("<time>", 1900), "<i></i>", ""},
      {"formatting elements that paragraphs leave open", "", "<p><b a=%></p>", ""},
      {"and blocks behind them", Repeated("<p><b></p>", 1500), "<p>x</p>", ""},
      {"formatting elements that end under blocks", "",
       Repeated("<b>", 200) + Repeated("<div>", 200) + Repeated("</b>", 200) +
           Repeated("</div>", 200),
       ""},
      {"hidden ones", "",
       Repeated("<b hidden>", 200) + Repeated("<div>", 200) + Repeated("</b>", 200) +
           Repeated("</div>", 200),
       ""},
      {"forms that end under blocks", Repeated("<div>", 400), "<form><div></form></div>", ""},
      {"links in links", "", "<a><div>", ""},
      {"what a table puts before itself", "<table>", "x<td>y</td>", ""},
      {"tables in tables", "", "<table>x<td>", ""},
      {"names without end", "", "<x%>", ""},
      {"end tags of them", Repeated("<x-a><x-b>", 200), "</x%>", ""},
      {"items without end", "", "<li>", ""},
      {"lists", "", "<ul><li>", ""},
      {"choices", "<select>", "<optgroup><option>", ""},
      {"resets of the mode", Repeated("<table><td>", 120), "<table></table>", ""},
      {"brackets", "", "<", ""},
      {"ampersands", "", "&", ""},
      {"numbers", "", "&#x", ""},
      {"digits", "&#", "0", ""},
      {"comments that do not end", "", "<!--", ""},
      {"nor with such an end", "<!--", "->", ""},
      {"comments in scripts", "<script>", "<!--<script>", ""},
      {"quotes", "<p ", "a='", ""},
      {"styles", "<p style=\"", "a:'/*;", "\">"},
      {"titles", "", "<title></title>", ""},
      {"meta elements", "", "<meta name=a content=b>", ""},
      {"headings", "", "<h1>a<h2>b", ""},
      {"frames of the page", "", "<header>a<h1>b", ""},
  };
  for (const HostilePage& page : kPages) {
    SCOPED_TRACE(page.what);
    const int count = page.part.size() > 1000 ? 20 : 5000;
    const uint64_t once = StepsOf(page, count);
    EXPECT_LE(static_cast<double>(StepsOf(page, 2 * count)), 2.2 * static_cast<double>(once));
  }
}

TEST(HtmlPage, EndsWhenTheBudgetDoes) {
  const std::string html = Repeated("<p>word <b>and</b> text", 100000);
  PageContent page;
  ReadingBudget late;
  late.deadline = std::chrono::steady_clock::now() - std::chrono::seconds(1);
  EXPECT_EQ(ParseHtmlPage(html, late, page), Reason::kMarkupTooSlow);
  EXPECT_TRUE(page.body.empty());
  ReadingBudget small;
  small.bytesLimit = 100000;
  EXPECT_EQ(ParseHtmlPage(html, small, page), Reason::kMarkupTooLarge);
  EXPECT_TRUE(page.body.empty());
  volatile std::sig_atomic_t stop = 1;
  ReadingBudget stopped;
  stopped.stop = &stop;
  EXPECT_EQ(ParseHtmlPage(html, stopped, page), Reason::kStopped);
}

TEST(HtmlPage, MemoryIsInProportionToTheText) {
  const std::string html = Repeated("<p>words of a page ", 50000);
  PageContent page;
  ReadingBudget budget;
  EXPECT_EQ(ParseHtmlPage(html, budget, page), Reason::kNone);
  EXPECT_LT(budget.bytes, 4 * html.size());
}

}  // namespace
}  // namespace vela::indexer
