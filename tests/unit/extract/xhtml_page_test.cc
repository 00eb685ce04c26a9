#include "indexer/extract/xhtml_page.h"

#include <gtest/gtest.h>

#include "indexer/words/clean_text.h"

namespace vela::indexer {
namespace {

constexpr std::string_view kRoot = "<html xmlns='http://www.w3.org/1999/xhtml'>";

// A page with `body`, on its second line.
std::string Page(const std::string& body) {
  return std::string(kRoot) + "<head><title>T</title></head>\n<body>" + body + "</body></html>";
}

Reason Parse(std::string_view xml, PageContent& page, std::string& fault) {
  ReadingBudget budget = StartReading({}, xml.size());
  return ParseXhtmlPage(xml, budget, page, fault);
}

// The text of a page as one line, headings as "<level>text", blanks collapsed.
std::string TextOf(const PageContent& page) {
  std::string text;
  for (const TextRun& run : page.body) {
    if (run.headingLevel != 0) text += "<" + std::to_string(run.headingLevel) + ">";
    text += run.text + " ";
  }
  return CollapseBlanks(text);
}

std::string BodyOf(const std::string& xml) {
  PageContent page;
  std::string fault;
  EXPECT_EQ(Parse(xml, page, fault), Reason::kNone);
  EXPECT_EQ(fault, "");
  return TextOf(page);
}

std::string Repeated(std::string_view text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

TEST(XhtmlPage, TakesTheTextAndLeavesTheRest) {
  const struct {
    const char* what;
    std::string body, expected;
  } kCases[] = {
      {"blocks end words, inline elements do not", "<p>one<b>two</b></p><p>three<br/>four</p>",
       "onetwo three four"},
      {"cells are apart", "a<table><tr><td>b</td><td>c</td></tr></table>d", "a b c d"},
      {"headings are known", "<h1>Top</h1>text<h3>Sub <i>part</i></h3>more",
       "<1>Top text <3>Sub part more"},
      {"elements end where they begin", "a<script src='a.js'/><iframe src='b'/><textarea/> b",
       "a b"},
      {"as do titles", "a<title/><p>b</p>", "a b"},
      {"a section of characters", "<p><![CDATA[a <b> & c]]></p>", "a <b> & c"},
      {"scripts, styles, templates",
       "a<script><![CDATA[if (x<1) y();]]></script><style>p{}</style>"
       "<template>t</template><noscript><p>n</p></noscript>b",
       "ab"},
      {"elements inside a script", "a<script><b>x</b><script>y</script></script>b", "ab"},
      {"old listings", "a<xmp>&lt;b&gt;</xmp>c", "a <b> c"},
      {"alternative texts", "see <img alt='a &amp;amp; b' src='x'/> there", "see a &amp; b there"},
      {"navigation and frame", "<nav>menu</nav><p>text</p><footer>imprint</footer>", "text"},
      {"hidden parts", "<p hidden=''>a</p><p style='display:none'>b</p><p>c</p>", "c"},
      {"hidden parts end where they begin", "<div hidden=''/>a", "a"},
      {"comments and instructions", "a<!-- b --><?c d?>e", "ae"},
      {"capital letters make another element", "a<SCRIPT>b</SCRIPT>c", "a b c"},
      {"names of HTML", "caf&eacute;&nbsp;&NotEqualTilde; &lt;b&gt; &LT;&AMP; &#x201C;x&quot;",
       "caf\u00E9 \u2242\u0338 <b> <& \u201Cx\""},
      {"names of HTML in an attribute", "<img alt='caf&eacute; &AMP; &LT;' src='x'/>",
       "caf\u00E9 & <"},
      {"another prefix", "<h:h2 xmlns:h='http://www.w3.org/1999/xhtml'>a</h:h2>b", "<2>a b"},
      {"drawings and formulas",
       "<svg xmlns='http://www.w3.org/2000/svg'><title>t</title><style>s</style>"
       "<text>drawn</text></svg><math xmlns='http://www.w3.org/1998/Math/MathML'><mi>x</mi></math>",
       "t drawn x"},
      {"elements of some other language", "a<n:p xmlns:n='urn:n'>b</n:p>c", "a b c"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BodyOf(Page(c.body)), c.expected);
  }
}

TEST(XhtmlPage, ReadsTheHead) {
  PageContent page;
  std::string fault;
  const std::string xml =
      "<?xml version='1.0' encoding='iso-8859-1'?>"
      "<!DOCTYPE html PUBLIC '-//W3C//DTD XHTML 1.0 Strict//EN' 'http://a.example/strict.dtd'>" +
      std::string(kRoot) +
      "<head><script src='a.js'/><title>\n A &amp;amp; B &mdash; C\n</title>"
      "<meta name='Description' content=' What  it &eacute; is '/>"
      "<link rel='canonical' href='/a?b&amp;c'/><base href='/d/'/>"
      "<script type='application/ld+json'><![CDATA[{\"dateModified\":\"2026-03-05\"}]]></script>"
      "</head><body><p>caf\u00E9</p><time datetime='2026-03-04'/></body></html>\n";
  EXPECT_EQ(Parse(xml, page, fault), Reason::kNone);
  EXPECT_EQ(fault, "");
  EXPECT_EQ(page.title, "A &amp; B \u2014 C");
  EXPECT_EQ(page.description, "What it \u00E9 is");
  EXPECT_EQ(page.canonical, "/a?b&c");
  EXPECT_EQ(page.base, "/d/");
  EXPECT_EQ(page.time, "2026-03-04");
  EXPECT_EQ(MetaContent(page, "json-ld:datemodified"), "2026-03-05");
  EXPECT_EQ(TextOf(page), "caf\u00E9");
}

TEST(XhtmlPage, HonoursNoindex) {
  PageContent page;
  std::string fault;
  const std::string xml = "<html><head><meta name='robots' content='noindex'/></head>x</html>";
  EXPECT_EQ(Parse(xml, page, fault), Reason::kNoindex);
}

TEST(XhtmlPage, SaysWhereItIsNotWellFormed) {
  const struct {
    const char* what;
    std::string xml, fault;
  } kCases[] = {
      {"an end tag of another element", Page("<p>a<b>b</p></b>"), "line 2: mismatched tag"},
      {"an attribute without a value", Page("\n<p hidden>a</p>"),
       "line 3: not well-formed (invalid token)"},
      {"an ampersand", Page("a & b"), "line 2: not well-formed (invalid token)"},
      {"a prefix of nothing", Page("<x:p>a</x:p>"), "line 2: unbound prefix"},
      {"text behind the end", Page("a") + "b", "line 2: junk after document element"},
      {"no markup", "", "line 1: no element found"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    PageContent page;
    std::string fault;
    EXPECT_EQ(Parse(c.xml, page, fault), Reason::kNone);
    EXPECT_EQ(fault, c.fault);
    EXPECT_EQ(page.title, "");
    EXPECT_TRUE(page.body.empty());
  }
}

TEST(XhtmlPage, EntitiesOfItsOwn) {
  const struct {
    const char* what;
    std::string declarations, body, expected;
  } kCases[] = {
      {"are text and markup", "<!ENTITY name '<b>Vela</b> 1'>", "a &name; b", "a Vela 1 b"},
      {"go before those of HTML", "<!ENTITY eacute 'E'>", "&eacute;", "E"},
      {"that lie elsewhere stay away", "<!ENTITY far SYSTEM '/etc/passwd'>", "a&far;b", "ab"},
      {"as does a document type", "<!ENTITY % far SYSTEM 'http://a.example/d'> %far;", "a&copy;b",
       "a\u00A9b"},
      {"that nobody knows stay as they are", "", "a &unknown; b", "a &unknown; b"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(BodyOf("<!DOCTYPE html [" + c.declarations + "]>" + Page(c.body)), c.expected);
  }
}

TEST(XhtmlPage, EntitiesDoNotGrowOutOfProportion) {
  std::string laughs = "<!DOCTYPE html [<!ENTITY a0 'ha'>";
  for (int i = 1; i < 40; ++i) {
    const std::string before = "&a" + std::to_string(i - 1) + ";";
    laughs += "<!ENTITY a" + std::to_string(i) + " '" + Repeated(before, 10) + "'>";
  }
  PageContent page;
  std::string fault;
  EXPECT_EQ(Parse(laughs + "]>" + Page("&a39;"), page, fault), Reason::kMarkupTooLarge);
  EXPECT_TRUE(page.body.empty());
  // A long one many times.
  const std::string quadratic = "<!DOCTYPE html [<!ENTITY a '" + std::string(100000, 'x') + "'>]>" +
                                Page(Repeated("&a;", 100000));
  EXPECT_EQ(Parse(quadratic, page, fault), Reason::kMarkupTooLarge);
  const std::string endless = "<!DOCTYPE html [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>" + Page("&a;");
  EXPECT_EQ(Parse(endless, page, fault), Reason::kNone);
  EXPECT_EQ(fault, "line 2: recursive entity reference");
}

TEST(XhtmlPage, TextBelowTheDeepestLevelStays) {
  std::string body;
  for (int i = 0; i < 2000; ++i) body += "<div>" + std::to_string(i) + "<p>";
  body += "<script>x</script>deep";
  body += Repeated("</p></div>", 2000) + "<nav>left out</nav>end";
  const std::string text = BodyOf(Page(body));
  EXPECT_TRUE(text.starts_with("0 1 2 ")) << text;
  EXPECT_TRUE(text.ends_with(" 1998 1999 deep end")) << text;
}

TEST(XhtmlPage, EndsWhenTheBudgetDoes) {
  const std::string xml = Page(Repeated("<p>word <b>and</b> text</p>", 100000));
  PageContent page;
  std::string fault;
  ReadingBudget late;
  late.deadline = std::chrono::steady_clock::now() - std::chrono::seconds(1);
  EXPECT_EQ(ParseXhtmlPage(xml, late, page, fault), Reason::kMarkupTooSlow);
  EXPECT_TRUE(page.body.empty());
  ReadingBudget small;
  small.bytesLimit = 100000;
  EXPECT_EQ(ParseXhtmlPage(xml, small, page, fault), Reason::kMarkupTooLarge);
  volatile std::sig_atomic_t stop = 1;
  ReadingBudget stopped;
  stopped.stop = &stop;
  EXPECT_EQ(ParseXhtmlPage(xml, stopped, page, fault), Reason::kStopped);
  EXPECT_EQ(fault, "");
}

TEST(XhtmlPage, TheMemoryOfDeepMarkupCounts) {
  ReadingLimits limits;
  limits.bytes = 1 << 20;
  const std::string xml = Page(Repeated("<a>", 200000));
  ReadingBudget budget = StartReading(limits, xml.size());
  PageContent page;
  std::string fault;
  EXPECT_EQ(ParseXhtmlPage(xml, budget, page, fault), Reason::kMarkupTooLarge);
}

}  // namespace
}  // namespace vela::indexer
