#include "output/result_block.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using namespace std::string_literals;
using support::DefineCategories;
using support::DefineMetaFields;
using support::IndexBuilder;
using support::LittleEndian;
using support::LoadedSite;
using support::NewPage;
using support::PageFields;
using support::Repeat;

// Result blocks about to be written for pages 0, 1, 2, ... of a site in this order, with nothing
// but the title shown.
struct Blocks {
  bool showsContext = false;
  LoadedSite site;
  SearchRequest request;
  Query query;
  LinkParameters links;
  HighlightTerms highlight;
  OutputSections sections;
  support::CapturedResponse captured;
  Matches matches;
  ResultList results;
  BlockStatus status = BlockStatus::kOk;

  explicit Blocks(const IndexBuilder& builder, bool xml = false) : site(builder), captured(xml) {
    site.settings.DisplayTitle = 1;
    Set(query.text, "red \"oak\"");
    Set(links.query, "red+%22oak%22");
    EXPECT_TRUE(AllocateSections(sections, 10));
    EXPECT_TRUE(AllocateMatches(matches, site.settings.NumPages));
    ListPages(site.settings.NumPages);
  }
  void ListPages(int32_t count) {
    ASSERT_TRUE(results.entries.TryAllocate(static_cast<size_t>(count)));
    for (uint32_t page = 0; page < results.entries.size(); ++page) {
      results.entries[page].page = page;
      results.entries[page].score = 260;
      results.entries[page].termsMatched = 2;
    }
  }
  std::string Write() {
    const ResultBlocks blocks = {.settings = site.settings,
                                 .request = request,
                                 .query = query,
                                 .links = links,
                                 .files = site.files,
                                 .dictionary = site.dictionary,
                                 .highlight = highlight,
                                 .matches = matches,
                                 .showsContext = showsContext};
    status = WriteResultBlocks(captured.response, sections, blocks, results);
    return captured.response.xml ? captured.Text() : std::string(sections.results.view());
  }
};

IndexBuilder Pages(const std::vector<PageFields>& pages) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4");
  for (const PageFields& page : pages) builder.Page(page);
  return builder;
}

IndexBuilder ManyPages(int count) {
  IndexBuilder builder = Pages({});
  for (int i = 0; i < count; ++i) {
    builder.Page(NewPage(std::to_string(i) + ".html", "T" + std::to_string(i)));
  }
  return builder;
}

std::string Block(const std::string& inside, const std::string& infoLine = "") {
  return "<div class=\"result_block\">\n" + inside + "<div class=\"infoline\">" + infoLine +
         "</div>\n</div>\n";
}

constexpr char kPlainTitle[] = "<div class=\"result_title\"><a href=\"a.html\" >A</a></div>\n";

TEST(ResultBlock, Plain) {
  Blocks blocks(Pages({NewPage("a.html", "A", "about", "i.png")}));
  EXPECT_EQ(blocks.Write(), Block(kPlainTitle));
  EXPECT_EQ(blocks.status, BlockStatus::kOk);
}

TEST(ResultBlock, OddIndexesHaveTheOtherClass) {
  Blocks blocks(ManyPages(3));
  const std::string info = "<div class=\"infoline\"></div>\n</div>\n";
  EXPECT_EQ(blocks.Write(),
            "<div class=\"result_block\">\n"
            "<div class=\"result_title\"><a href=\"0.html\" >T0</a></div>\n" +
                info +
                "<div class=\"result_altblock\">\n"
                "<div class=\"result_title\"><a href=\"1.html\" >T1</a></div>\n" +
                info +
                "<div class=\"result_block\">\n"
                "<div class=\"result_title\"><a href=\"2.html\" >T2</a></div>\n" +
                info);
}

// The titles of the blocks written, without their "T".
std::vector<int> Shown(const std::string& text) {
  std::vector<int> shown;
  for (size_t at = text.find(">T"); at != text.npos; at = text.find(">T", at + 1)) {
    shown.push_back(std::stoi(text.substr(at + 2)));
  }
  return shown;
}

TEST(ResultBlock, Page3Of25ResultsShowsEntries21To25) {
  Blocks blocks(ManyPages(25));
  blocks.request.page = 3;
  EXPECT_EQ(Shown(blocks.Write()), (std::vector<int>{20, 21, 22, 23, 24}));
}

TEST(ResultBlock, PageBeyondTheLastShowsNothing) {
  for (int32_t page : {4, 1000, INT32_MAX}) {
    Blocks blocks(ManyPages(25));
    blocks.request.page = page;
    EXPECT_EQ(blocks.Write(), "");
    EXPECT_EQ(blocks.status, BlockStatus::kOk);
  }
}

TEST(ResultBlock, SlicesTable) {
  const struct {
    const char* what;
    int32_t page, perPage;
    std::vector<int> shown;
  } cases[] = {
      {"the first page", 1, 2, {0, 1}},
      {"page 0 shows the first", 0, 2, {0, 1}},
      {"a negative page shows the first", -7, 2, {0, 1}},
      {"the second page", 2, 2, {2, 3}},
      {"the last, not full", 3, 2, {4}},
      {"everything on one page", 1, 100, {0, 1, 2, 3, 4}},
      {"no results a page counts as ten", 1, 0, {0, 1, 2, 3, 4}},
      {"no results a page, second page", 2, 0, {}},
      {"the largest number a page", 1, INT32_MAX, {0, 1, 2, 3, 4}},
      {"the largest number, second page", 2, INT32_MAX, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Blocks blocks(ManyPages(5));
    blocks.request.page = c.page;
    blocks.request.perPage = c.perPage;
    EXPECT_EQ(Shown(blocks.Write()), c.shown);
  }
}

TEST(ResultBlock, NumberCountsOverThePages) {
  Blocks blocks(ManyPages(3));
  blocks.site.settings.DisplayNumber = 1;
  blocks.request.page = 2;
  blocks.request.perPage = 2;
  EXPECT_EQ(blocks.Write(),
            Block("<div class=\"result_title\"><b>3.</b>&nbsp;<a href=\"2.html\" >T2</a></div>\n"));
}

TEST(ResultBlock, WithoutTitleTheLinkTextIsTheAddress) {
  Blocks blocks(Pages({NewPage("a.html", "A")}));
  blocks.site.settings.DisplayTitle = 0;
  EXPECT_EQ(blocks.Write(),
            Block("<div class=\"result_title\"><a href=\"a.html\" >a.html</a></div>\n"));
}

TEST(ResultBlock, EmptyTitleStaysEmpty) {
  Blocks blocks(Pages({NewPage("a.html", "")}));
  EXPECT_EQ(blocks.Write(), Block("<div class=\"result_title\"><a href=\"a.html\" ></a></div>\n"));
}

TEST(ResultBlock, TargetsTable) {
  const struct {
    const char* what;
    const char* url;
    int32_t gotoHighlight, pdfHighlight, substring;
    std::string expected;
  } cases[] = {
      {"plain", "a.html", 0, 0, 0, "a.html"},
      {"with the query", "a.html", 1, 0, 0, "a.html?vela_highlight=red+%22oak%22"},
      {"with the query of a substring search", "a.html", 1, 0, 1,
       "a.html?vela_highlightsub=red+%22oak%22"},
      {"behind a question mark", "a.php?x=1", 1, 0, 0,
       "a.php?x=1&amp;vela_highlight=red+%22oak%22"},
      {"behind a fragment", "a.html#top", 1, 0, 0, "a.html#top?vela_highlight=red+%22oak%22"},
      {"into a document", "a.pdf", 0, 1, 0, "a.pdf#search=%22red oak%22"},
      {"into a document, in any case, anywhere", "a.PDF?x", 0, 1, 0,
       "a.PDF?x#search=%22red oak%22"},
      {"no document", "a.html", 0, 1, 0, "a.html"},
      {"the document wins", "a.pdf", 1, 1, 0, "a.pdf#search=%22red oak%22"},
      {"a document without its setting", "a.pdf", 1, 0, 0, "a.pdf?vela_highlight=red+%22oak%22"},
      {"other values are off", "a.pdf", 2, 2, 0, "a.pdf"},
      {"cut at 2083 bytes", "", 1, 0, 0, "?vela_highlight=red+%22oak%22"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Blocks blocks(Pages({NewPage(c.url, "A")}));
    blocks.site.settings.GotoHighlight = c.gotoHighlight;
    blocks.site.settings.PdfHighlight = c.pdfHighlight;
    blocks.site.settings.SearchAsSubstring = c.substring;
    EXPECT_EQ(blocks.Write(),
              Block("<div class=\"result_title\"><a href=\"" + c.expected + "\" >A</a></div>\n"));
  }
}

TEST(ResultBlock, TargetIsCutAt2083Bytes) {
  const std::string url = Repeat("u", 2070);
  Blocks blocks(Pages({NewPage(url, "A")}));
  blocks.site.settings.GotoHighlight = 1;
  EXPECT_EQ(blocks.Write(), Block("<div class=\"result_title\"><a href=\"" + url +
                                  "?vela_highlig\" >A</a></div>\n"));
}

TEST(ResultBlock, QueryInADocumentLinkCannotEndTheAttribute) {
  Blocks blocks(Pages({NewPage("a.pdf", "A")}));
  blocks.site.settings.PdfHighlight = 1;
  Set(blocks.query.text, "<b>'&\x01 c\xE9=");
  EXPECT_EQ(
      blocks.Write(),
      Block("<div class=\"result_title\"><a href=\"a.pdf#search=%22%3Cb%3E%27%26%01 c\xE9=%22\""
            " >A</a></div>\n"));
}

TEST(ResultBlock, LinkAttributes) {
  const struct {
    const char* what;
    int32_t useTarget, pluginWindow, pluginStart;
    uint8_t fileType;
    const char* attribute;
  } cases[] = {
      {"none", 0, 0, 4, 4, ""},
      {"configured", 1, 0, 4, 4, "target=\"side\""},
      {"configured by 1 only", 2, 0, 4, 4, ""},
      {"a plug-in", 0, 1, 4, 4, "target=\"_blank\""},
      {"a later plug-in", 0, 1, 4, 200, "target=\"_blank\""},
      {"no plug-in", 0, 1, 4, 3, ""},
      {"no plug-in, configured", 1, 1, 4, 3, "target=\"side\""},
      {"a plug-in wins", 1, 1, 4, 4, "target=\"_blank\""},
      {"the plug-ins start elsewhere", 0, 1, 7, 4, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    PageFields page = NewPage("a.html", "A");
    page.fileType = c.fileType;
    Blocks blocks(Pages({page}));
    blocks.site.settings.UseLinkTarget = c.useTarget;
    Set(blocks.site.settings.LinkTarget, "side");
    blocks.site.settings.PluginOpenNewWindow = c.pluginWindow;
    blocks.site.settings.FileTypePluginStart = c.pluginStart;
    EXPECT_EQ(blocks.Write(), Block("<div class=\"result_title\"><a href=\"a.html\" " +
                                    std::string(c.attribute) + ">A</a></div>\n"));
  }
}

TEST(ResultBlock, Image) {
  Blocks blocks(Pages({NewPage("a.html", "A", "", "i.png")}));
  blocks.site.settings.UseVelaImage = 1;
  blocks.site.settings.UseLinkTarget = 1;
  Set(blocks.site.settings.LinkTarget, "t");
  EXPECT_EQ(blocks.Write(),
            Block("<div class=\"result_image\"><a href=\"a.html\" target=\"t\">"
                  "<img src=\"i.png\" alt=\"\" class=\"result_image\" /></a></div>"
                  "<div class=\"result_title\"><a href=\"a.html\" target=\"t\">A</a></div>\n"));
  Blocks without(Pages({NewPage("a.html", "A")}));
  without.site.settings.UseVelaImage = 1;
  EXPECT_EQ(without.Write(), Block(kPlainTitle));
}

TEST(ResultBlock, Categories) {
  PageFields page = NewPage("a.html", "A");
  page.categoryBits = "\x05";
  Blocks blocks(Pages({page}));
  DefineCategories(blocks.site.settings, {"maps", "books", "toys"});
  EXPECT_EQ(blocks.Write(),
            Block("<div class=\"result_title\"><a href=\"a.html\" >A</a><span class=\"category\">"
                  " [maps] [toys]</span></div>\n"));
  page.categoryBits = "\x00"s;
  Blocks none(Pages({page}));
  DefineCategories(none.site.settings, {"maps"});
  EXPECT_EQ(none.Write(),
            Block("<div class=\"result_title\"><a href=\"a.html\" >A</a><span class=\"category\">"
                  "</span></div>\n"));
}

TEST(ResultBlock, CategoryWithoutABitIsInvalid) {
  PageFields page = NewPage("a.html", "A");
  page.categoryBits = "\x05";
  Blocks blocks(Pages({page}));
  DefineCategories(blocks.site.settings, std::vector<std::string>(9, "name"));
  blocks.site.settings.NumCatBytes = 1;
  blocks.Write();
  EXPECT_EQ(blocks.status, BlockStatus::kInvalidCategory);
}

TEST(ResultBlock, DescriptionFromThreeCharactersOn) {
  const struct {
    const char* description;
    int32_t shown;
    const char* expected;
  } cases[] = {
      {"about", 1, "<div class=\"description\">about</div>\n"},
      {"abc", 1, "<div class=\"description\">abc</div>\n"},
      {"ab", 1, ""},
      {"", 1, ""},
      {"about", 0, ""},
      {"about", 2, ""},
      {"100%s <b>", 1, "<div class=\"description\">100%s <b></div>\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.description);
    Blocks blocks(Pages({NewPage("a.html", "A", c.description)}));
    blocks.site.settings.DisplayMetaDesc = c.shown;
    EXPECT_EQ(blocks.Write(), Block(std::string(kPlainTitle) + c.expected));
  }
}

TEST(InfoLine, Table) {
  struct Shown {
    int32_t terms, score, date, size, url, truncate;
  };
  const struct {
    const char* what;
    Shown shown;
    const char* expected;
  } cases[] = {
      {"everything",
       {1, 1, 1, 1, 1, 0},
       "Words: 2&nbsp; - &nbsp;Score: 260&nbsp; - &nbsp;03 Feb 2010&nbsp; - &nbsp;3k&nbsp; - "
       "&nbsp;At: http://a.example/docs/oak.html"},
      {"terms", {1, 0, 0, 0, 0, 0}, "Words: 2"},
      {"score", {0, 1, 0, 0, 0, 0}, "Score: 260"},
      {"date", {0, 0, 1, 0, 0, 0}, "03 Feb 2010"},
      {"size", {0, 0, 0, 1, 0, 0}, "3k"},
      {"address", {0, 0, 0, 0, 1, 0}, "At: http://a.example/docs/oak.html"},
      {"terms and address",
       {1, 0, 0, 0, 1, 0},
       "Words: 2&nbsp; - &nbsp;At: http://a.example/docs/oak.html"},
      {"the address has 30 characters, 20 are shown",
       {0, 0, 0, 0, 1, 20},
       "At: http://a.example/doc..."},
      {"as long as is shown", {0, 0, 0, 0, 1, 30}, "At: http://a.example/docs/oak.html"},
      {"one less is shown", {0, 0, 0, 0, 1, 29}, "At: http://a.example/docs/oak.htm..."},
      {"a negative number cuts nothing", {0, 0, 0, 0, 1, -5}, "At: http://a.example/docs/oak.html"},
      {"other values are off", {2, 2, 2, 2, 2, 0}, ""},
  };
  PageFields page = NewPage("http://a.example/docs/oak.html", "A");
  page.fileSize = 4000;        // 3.9 kilobytes
  page.dateTime = 1265155200;  // 2010-02-03 00:00:00 UTC
  ASSERT_EQ(page.url.size(), 30u);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Blocks blocks(Pages({page}));
    Settings& settings = blocks.site.settings;
    settings.DisplayTerms = c.shown.terms;
    settings.DisplayScore = c.shown.score;
    settings.DisplayDate = c.shown.date;
    settings.DisplayFilesize = c.shown.size;
    settings.DisplayURL = c.shown.url;
    settings.TruncateShowURL = c.shown.truncate;
    EXPECT_EQ(blocks.Write(),
              Block("<div class=\"result_title\"><a href=\"http://a.example/docs/oak.html\" >A</a>"
                    "</div>\n",
                    c.expected));
  }
}

TEST(InfoLine, SizesAndDates) {
  const struct {
    const char* what;
    uint32_t fileSize;
    uint32_t dateTime;
    uint32_t score;
    const char* expected;
  } cases[] = {
      {"nothing is one kilobyte", 0, 0, 1, "Score: 1&nbsp; - &nbsp;1k"},
      {"1023 bytes", 1023, 0, 1, "Score: 1&nbsp; - &nbsp;1k"},
      {"2047 bytes", 2047, 0, 1, "Score: 1&nbsp; - &nbsp;1k"},
      {"2048 bytes", 2048, 0, 1, "Score: 1&nbsp; - &nbsp;2k"},
      {"the largest size", 0xFFFFFFFF, 0, 1, "Score: 1&nbsp; - &nbsp;4194303k"},
      {"the first second", 1, 1, 1, "Score: 1&nbsp; - &nbsp;01 Jan 1970&nbsp; - &nbsp;1k"},
      {"a date before 1970 is not shown", 1, 0xFFFFFFFF, 1, "Score: 1&nbsp; - &nbsp;1k"},
      {"the last second", 1, 0x7FFFFFFF, 1, "Score: 1&nbsp; - &nbsp;19 Jan 2038&nbsp; - &nbsp;1k"},
      {"scores are unsigned", 1, 0, 0xFFFFFFFF, "Score: 4294967295&nbsp; - &nbsp;1k"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    PageFields page = NewPage("a.html", "A");
    page.fileSize = c.fileSize;
    page.dateTime = c.dateTime;
    Blocks blocks(Pages({page}));
    blocks.results.entries[0].score = c.score;
    blocks.site.settings.DisplayScore = 1;
    blocks.site.settings.DisplayDate = 1;
    blocks.site.settings.DisplayFilesize = 1;
    EXPECT_EQ(blocks.Write(), Block(kPlainTitle, c.expected));
  }
}

std::string MetaValueBlock(const std::string& name, const std::string& value) {
  return "<div class=\"result_custommeta\"><span class=\"result_metaname_" + name + "\">" + name +
         ": </span><span class=\"result_metavalue_" + name + "\">" + value + "</span></div>";
}

TEST(MetaValues, Table) {
  const std::vector<std::string> list = {"red", "blue", "green"};
  const struct {
    const char* what;
    int32_t type;
    int32_t showDec;
    std::string data;
    std::string expected;  // empty: not shown
  } cases[] = {
      {"numeric", kMetaNumeric, 0, LittleEndian(42, 4), "42"},
      {"numeric, negative", kMetaNumeric, 0, LittleEndian(0xFFFFFFF9, 4), "-7"},
      {"numeric, none", kMetaNumeric, 0, LittleEndian(0x80000000, 4), ""},
      {"text", 1, 0, "red oak\0"s, "red oak"},
      {"text, none", 1, 0, "\0"s, ""},
      {"drop-down", kMetaDropDown, 0, "\x01", "blue"},
      {"drop-down, none", kMetaDropDown, 0, "\xFF", ""},
      {"drop-down, beyond the list", kMetaDropDown, 0, "\x03", ""},
      {"several", kMetaMultiple, 0, "\x02\x02\x00"s, "green, red"},
      {"several, one beyond the list", kMetaMultiple, 0, "\x03\x00\x09\x01"s, "red, blue"},
      {"several, none", kMetaMultiple, 0, "\x00"s, ""},
      {"money with decimals", kMetaMoney, 1, LittleEndian(1250, 4), "&#36;12.50"},
      {"money, less than a whole", kMetaMoney, 1, LittleEndian(5, 4), "&#36;0.05"},
      {"money, negative", kMetaMoney, 1, LittleEndian(0xFFFFFF38, 4), "&#36;-2.00"},
      {"money without decimals is truncated", kMetaMoney, 0, LittleEndian(1299, 4), "&#36;12"},
      {"money, none", kMetaMoney, 1, LittleEndian(0x80000000, 4), ""},
      {"data that ends early", kMetaNumeric, 0, "\x2A\0\0"s, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    PageFields page = NewPage("a.html", "A");
    page.metaData = c.data;
    Blocks blocks(Pages({page}));
    DefineMetaFields(blocks.site.settings, {{"field", c.type, "Label", 0, list}});
    blocks.site.settings.DisplayMetaFields = 1;
    blocks.site.settings.MetaMoneyShowDec = c.showDec;
    EXPECT_EQ(blocks.Write(),
              Block(kPlainTitle + (c.expected.empty() ? "" : MetaValueBlock("field", c.expected))));
  }
}

TEST(MetaValues, InTheOrderOfTheirDefinitionsBehindTheCategories) {
  PageFields page = NewPage("a.html", "A");
  page.metaData = "oak\0"s + LittleEndian(0x80000000, 4) + LittleEndian(7, 4);
  Blocks blocks(Pages({page}));
  DefineMetaFields(
      blocks.site.settings,
      {{"wood", 1, "", 0}, {"none", kMetaNumeric, "", 0}, {"size", kMetaNumeric, "", 0}});
  EXPECT_EQ(blocks.Write(), Block(kPlainTitle));  // not shown without DisplayMetaFields
  blocks.site.settings.DisplayMetaFields = 1;
  ASSERT_TRUE(AllocateSections(blocks.sections, 10));
  EXPECT_EQ(blocks.Write(),
            Block(kPlainTitle + MetaValueBlock("wood", "oak") + MetaValueBlock("size", "7")));
}

TEST(ResultBlock, CorruptPageDataKeepsTheBlocksBeforeIt) {
  IndexBuilder builder = Pages({NewPage("a.html", "A"), NewPage("b.html", "B")});
  builder.Cut("vela_pagedata.vdat", 20);  // the second line lacks separators
  Blocks blocks(builder);
  EXPECT_EQ(blocks.Write(), Block(kPlainTitle));
  EXPECT_EQ(blocks.status, BlockStatus::kCorruptPageData);
}

TEST(Item, InXml) {
  PageFields page = NewPage("a.html", "A <i>", "about", "i.png");
  page.fileSize = 4000;
  page.dateTime = 1265155200;
  page.fileType = 3;
  page.categoryBits = "\x03";
  page.metaData = "oak\0"s;
  Blocks blocks(Pages({page}), true);
  Settings& settings = blocks.site.settings;
  DefineCategories(settings, {"maps", "books"});
  DefineMetaFields(settings, {{"wood", 1, "Wood", 0}});
  settings.UseVelaImage = settings.DisplayMetaFields = settings.DisplayMetaDesc = 1;
  settings.DisplayTerms = settings.DisplayScore = settings.DisplayDate = 1;
  settings.DisplayFilesize = settings.DisplayURL = 1;
  // Read again: the categories and fields were not known when the file was loaded.
  CloseIndexFiles(blocks.site.files);
  ASSERT_EQ(OpenIndexFiles(blocks.site.files, blocks.site.directory, settings).status,
            LoadStatus::kOk);
  const std::string text = blocks.Write();
  EXPECT_TRUE(text.starts_with("<item>\n")) << text;
  EXPECT_TRUE(text.ends_with("</item>\n")) << text;
  for (const char* element :
       {"<title>A <i></title>\n", "<link>a.html</link>\n", "<category>maps</category>\n",
        "<category>books</category>\n", "<vela:score>260</vela:score>\n",
        "<vela:fileSize>4000k</vela:fileSize>\n"}) {
    EXPECT_NE(text.find(element), std::string::npos) << element;
  }
  EXPECT_EQ(blocks.sections.results.view(), "");
}

// Page 0 has a section from byte 8 of the page text on.
IndexBuilder WithSection(const std::string& url, const std::string& anchor,
                         const std::string& heading) {
  // At the block's place; its texts as they are, in one step.
  const std::string texts = anchor + heading;
  const std::string block = LittleEndian(0, 1) + LittleEndian(anchor.size(), 1) +
                            LittleEndian(heading.size(), 1) + LittleEndian(texts.size() - 1, 1) +
                            texts;
  const std::string file = LittleEndian(kSectionsMagic, 8) + LittleEndian(7, 8) +
                           LittleEndian(16, 8) + LittleEndian(block.size(), 8) +
                           LittleEndian(1, 8) + block + LittleEndian(8, 8) + LittleEndian(0, 4) +
                           LittleEndian(SectionBlockSum(block, 8, UINT64_MAX), 4);
  IndexBuilder builder = Pages({NewPage(url, "Manual")});
  builder.Set("DisplayContext", "1").Set("SectionLinks", "1").Set("LookupGeneration", "7");
  return builder.Tokens(std::vector<support::PageTextToken>(4)).File("vela_sections.vdat", file);
}

std::string WithSectionAt(const IndexBuilder& builder, uint64_t position, bool xml = false) {
  Blocks blocks(builder, xml);
  blocks.site.settings.ContextSize = 0;
  blocks.showsContext = true;
  blocks.matches.pages.Touch(0).firstPositionLow = static_cast<uint32_t>(position);
  blocks.matches.touched[0] = 1;
  const std::string text = blocks.Write();
  const char* const ends = xml ? "</item>" : "</a>";
  const size_t begin = text.find(xml ? "<link>" : "<a href");
  return text.substr(begin, text.find(xml ? "\n" : ends, begin) - begin);
}

TEST(SectionLinks, LeadToTheSectionAndNameIt) {
  const IndexBuilder site = WithSection("a.html", "use", "How to use it");
  EXPECT_EQ(WithSectionAt(site, 12),
            "<a href=\"a.html#use\" >Manual <span class=\"result_section\">&#8250; How to use "
            "it</span>");
  EXPECT_EQ(WithSectionAt(site, 12, true), "<link>a.html#use</link>");
  // Ahead of the section the words belong to the page.
  EXPECT_EQ(WithSectionAt(site, 4), "<a href=\"a.html\" >Manual");
}

TEST(SectionLinks, OnlyWithTheSetting) {
  IndexBuilder site = WithSection("a.html", "use", "How to use it");
  site.Set("SectionLinks", "0");
  EXPECT_EQ(WithSectionAt(site, 12), "<a href=\"a.html\" >Manual");
  site.Set("SectionLinks", "2");
  EXPECT_EQ(WithSectionAt(site, 12), "<a href=\"a.html\" >Manual");
  // Nor with a file of another index.
  site.Set("SectionLinks", "1").Set("LookupGeneration", "8");
  EXPECT_EQ(WithSectionAt(site, 12), "<a href=\"a.html\" >Manual");
}

TEST(SectionLinks, APageOfADocumentIsCalledAsViewersReadIt) {
  EXPECT_EQ(WithSectionAt(WithSection("a.pdf", "page=7", "Prices"), 12),
            "<a href=\"a.pdf#page=7\" >Manual <span class=\"result_section\">&#8250; "
            "Prices</span>");
}

TEST(SectionLinks, AnAddressKeepsItsFragment) {
  EXPECT_EQ(WithSectionAt(WithSection("a.html#top", "use", "How to use it"), 12),
            "<a href=\"a.html#top\" >Manual");
}

TEST(SectionLinks, NothingOfTheFileIsMarkup) {
  EXPECT_EQ(WithSectionAt(WithSection("a.html", "\"><b x='&#", "<script>"), 12),
            "<a href=\"a.html#%22%3E%3Cb%20x=%27%26%23\" >Manual");
  EXPECT_EQ(WithSectionAt(WithSection("a.html", "\xC3\xA9", "\" onclick=\"x"), 12, true),
            "<link>a.html#%C3%A9</link>");
  // A heading that says what the title says is not said twice.
  EXPECT_EQ(WithSectionAt(WithSection("a.html", "x", "Manual"), 12),
            "<a href=\"a.html#x\" >Manual");
}

TEST(SectionLinks, AnAddressWithoutRoomStaysWhole) {
  const std::string url(2080, 'u');
  EXPECT_EQ(WithSectionAt(WithSection(url, "use", ""), 12), "<a href=\"" + url + "\" >Manual");
  EXPECT_EQ(WithSectionAt(WithSection(url, "ab", ""), 12), "<a href=\"" + url + "#ab\" >Manual");
}

}  // namespace
}  // namespace vela
