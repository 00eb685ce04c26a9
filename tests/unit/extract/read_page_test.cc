#include "indexer/extract/read_page.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

const PageWishes kWishes = {.images = true, .dates = {DateSource::kMeta, DateSource::kFile}};

Reason Read(FileType type, const char* path, const std::string& bytes, Page& page,
            bool isXml = false) {
  const SourceItem item = {path, std::string("https://x.example/") + path, type, {}, isXml};
  return ReadPage(item, {.bytes = bytes, .size = bytes.size(), .modifiedTime = 7}, kWishes, {},
                  page);
}

TEST(ReadPage, GathersWhatIsKnownOfAPage) {
  Page page;
  const std::string html =
      "<title>T</title><base href=/b/><link rel=canonical href='\u00FC.html'>"
      "<meta property=og:image content=p.png><meta name=date content=2001-09-09>text";
  ASSERT_EQ(Read(FileType::kHtml, "a/x.html", html, page), Reason::kNone);
  EXPECT_EQ(page.facts.path, "a/x.html");
  EXPECT_EQ(page.facts.address, "https://x.example/a/x.html");
  EXPECT_EQ(page.facts.canonical, "https://x.example/b/%C3%BC.html");
  EXPECT_EQ(page.facts.title, "T");
  EXPECT_EQ(page.facts.image, "https://x.example/b/p.png");
  EXPECT_EQ(page.facts.fileSize, html.size());
  EXPECT_EQ(page.facts.time, 1000036800);  // noon
  EXPECT_EQ(page.facts.ownTime, 1000036800);
  EXPECT_EQ(page.facts.fileType, FileType::kHtml);
  ASSERT_EQ(page.content.body.size(), 1u);
}

TEST(ReadPage, LinksHaveWholeAddresses) {
  Page page;
  const std::string html =
      "<base href=/b/><a href='\u00FC.html#place'>one</a> <a href=mailto:me@x.example>two</a>"
      "<a href=//y.example/>three</a>";
  ASSERT_EQ(Read(FileType::kHtml, "a/x.html", html, page), Reason::kNone);
  ASSERT_EQ(page.content.links.size(), 2u);
  EXPECT_EQ(page.content.links[0].address, "https://x.example/b/%C3%BC.html");
  EXPECT_EQ(page.content.links[0].text, "one");
  EXPECT_EQ(page.content.links[1].address, "https://y.example/");
}

TEST(ReadPage, PicturesHaveWholeAddressesToo) {
  SiteConfig config;
  config.endings[static_cast<size_t>(FileType::kPicture)] = {"jpg"};
  const ContentChoices choices(config, "https://x.example/");
  PageWishes wishes = kWishes;
  wishes.content = &choices;
  const std::string html =
      "<base href=/b/><img src='\u00FC.jpg' alt=one><img src=data:, alt=two>text";
  const SourceItem item = {"a/x.html", "https://x.example/a/x.html", FileType::kHtml, {}, false};
  Page page;
  ASSERT_EQ(
      ReadPage(item, {.bytes = html, .size = html.size(), .modifiedTime = 7}, wishes, {}, page),
      Reason::kNone);
  ASSERT_EQ(page.content.pictures.size(), 1u);
  EXPECT_EQ(page.content.pictures[0].address, "https://x.example/b/%C3%BC.jpg");
  EXPECT_EQ(page.content.pictures[0].text, "one");
}

TEST(ReadPage, TitlesComeFromWhatThereIs) {
  const struct {
    const char* what;
    FileType type;
    std::string bytes;
    const char* title;
  } kCases[] = {
      {"its own", FileType::kHtml, "<title> The  title </title><h1>Heading</h1>", "The title"},
      {"the highest heading", FileType::kHtml, "<h2>Second</h2><h1>Main  heading</h1>text",
       "Main heading"},
      {"the file's name", FileType::kHtml, "<p>Only text", "f.x"},
      {"the first line of a text", FileType::kText, "# First line\n\nText", "First line"},
      {"a first line too long", FileType::kText, std::string(200, 'x'), "f.x"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    Page page;
    ASSERT_EQ(Read(c.type, "d/f.x", c.bytes, page), Reason::kNone);
    EXPECT_EQ(page.facts.title, c.title);
    EXPECT_EQ(page.facts.time, 7);
    EXPECT_EQ(page.facts.canonical, "");
    EXPECT_EQ(page.facts.image, "");
  }
}

TEST(ReadPage, TheNameOfAnAddressIsItsTitle) {
  const struct {
    const char* path;
    const char* title;
  } kCases[] = {
      {"https://x.example/a/b%20%C3%BC.html?c=/d", "b \u00FC.html"},
      {"https://x.example/a/", "a"},
      {"https://x.example/", "x.example"},
      {"a/b%20c.html", "b%20c.html"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.path);
    Page page;
    ASSERT_EQ(Read(FileType::kHtml, c.path, "<p>Only text", page), Reason::kNone);
    EXPECT_EQ(page.facts.title, c.title);
  }
}

TEST(ReadPage, FindsTheDateOfAPage) {
  const char* const kPages[] = {
      "<meta http-equiv=Last-Modified content='Sun, 09 Sep 2001 01:46:40 GMT'>x",
      "<meta http-equiv=date content='Sun, 09 Sep 2001 01:46:40 GMT'>x",
      "<meta itemprop=dateModified content=2001-09-09T01:46:40>x",
      "<time datetime=1999-01-01>x</time><time itemprop=datePublished "
      "datetime=2001-09-09T01:46:40Z>x",
      "<script type=application/ld+json>{\"@type\": \"Article\", \"dateModified\" :\n"
      "\"2001-09-09T03:46:40+02:00\"}</script>x",
  };
  for (const char* html : kPages) {
    SCOPED_TRACE(html);
    Page page;
    ASSERT_EQ(Read(FileType::kHtml, "a.html", html, page), Reason::kNone);
    EXPECT_EQ(page.facts.time, 1000000000);
  }
  Page page;
  for (const char* html : {"<script type=application/ld+json>{\"dateModified\"</script>x",
                           "<script type=application/ld+json>{\"dateModified\": 5}</script>x",
                           "<script>{\"dateModified\": \"2001-09-09\"}</script>x"}) {
    ASSERT_EQ(Read(FileType::kHtml, "a.html", html, page), Reason::kNone);
    EXPECT_EQ(page.facts.time, 7);
  }
}

TEST(ReadPage, ReadsAsXmlWhatIsSentOrDeclaredAsThat) {
  const std::string closed = "<html><nav/>text<p>more</p></html>";
  const struct {
    const char* what;
    std::string markup;
    bool isXml;
    const char* text;  // of the first run
    const char* fault;
  } kCases[] = {
      // The element goes on in HTML, and with nothing else the page is its navigation.
      {"HTML", "<title>T</title>" + closed, false, "", ""},
      {"sent as XML", closed, true, "text more ", ""},
      {"declared as XML", "<?xml version='1.0'?>" + closed, false, "text more ", ""},
      {"sent as XML, and none", "<p>text</b>", true, "text ", "line 1: mismatched tag"},
      {"the HTML of it", "<p>text<br>more", true, "text more ", "line 1: no element found"},
      {"declared as XML, and none", "<?xml version='1.0'?><p>text<br>more", false, "text more ",
       ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    Page page;
    ASSERT_EQ(Read(FileType::kHtml, "a", c.markup, page, c.isXml), Reason::kNone);
    EXPECT_EQ(page.content.body.empty() ? "" : page.content.body[0].text, c.text);
    EXPECT_EQ(page.content.markupFault, c.fault);
  }
}

TEST(ReadPage, SaysWhyAPageIsLeftOut) {
  const struct {
    FileType type;
    std::string bytes;
    Reason reason;
  } kCases[] = {
      {FileType::kText, std::string(100, '\x02'), Reason::kBinary},
      {FileType::kHtml, std::string(100, '\x02'), Reason::kBinary},
      {FileType::kHtml, "<meta name=robots content=noindex>x", Reason::kNoindex},
      {FileType::kText, "<meta name=robots content=noindex>x", Reason::kNone},
      {FileType::kHtml, "<p> </p>", Reason::kNoText},
      {FileType::kText, " \n ", Reason::kNoText},
      {FileType::kHtml, "<meta name=description content=d>", Reason::kNone},
      {FileType::kHtml,
       "<meta http-equiv=Refresh content='0; URL=b.html'><title>T</title>Redirecting to <a "
       "href=b.html>b</a>",
       Reason::kRefresh},
      {FileType::kHtml, "<meta http-equiv=refresh content=60>Scores", Reason::kNone},
      {FileType::kHtml,
       "<meta http-equiv=refresh content='60; url=b.html'>" + std::string(201, 'x'), Reason::kNone},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.bytes);
    Page page;
    EXPECT_EQ(Read(c.type, "a", c.bytes, page), c.reason);
  }
}

}  // namespace
}  // namespace vela::indexer
