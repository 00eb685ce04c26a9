#include "request/start_response.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "request/search_context.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CaptureFile;
using support::OpenDirectory;
using support::Repeat;

// A request that begins to be answered; the template lays out the whole page.
struct Start {
  OpenDirectory site;
  CaptureFile file;
  SearchContext ctx;
  bool goesOn = false;

  explicit Start(const std::string& query) {
    site.Write("search_template.html", "<!--VELASEARCH-->");
    InitSearchContext(ctx);
    ctx.response.descriptor = file.descriptor();
    OpenIndexDirectory(ctx.directory, site.scratch.path().string());
    support::SetLanguageTexts(ctx.settings);
    Set(ctx.settings.Charset, "utf-8");
    Set(ctx.settings.Version, "7");
    ctx.settings.VelaInfo = 0;
    ctx.settings.MaxResultsPerQuery = 100;
    Set(ctx.paths.scriptUrl, "/s.cgi");
    Set(ctx.request.query, query);
    ctx.request.queryGiven = true;
    EXPECT_TRUE(AllocateSections(ctx.output, 10));
  }
  std::string Run() {
    goesOn = StartResponse(ctx) != 0;
    Flush(ctx.response);
    return file.Text();
  }
  std::string_view operator[](Section section) const { return SectionText(ctx.output, section); }
};

constexpr char kHtmlHeader[] = "Content-type: text/html; charset=utf-8\n\n";

TEST(StartResponse, XmlBySettingWhenTheRequestDoesNotSay) {
  const struct {
    const char* what;
    int32_t useXml, xmlMode, noCharset;
    const char* header;
  } cases[] = {
      {"by setting", 1, kNotGiven, 0, "Content-type: text/xml; charset=utf-8\n\n<?xml "},
      {"by setting, without charset", 1, kNotGiven, 1, "Content-type: text/xml;\n\n<?xml "},
      {"not by another value", 2, kNotGiven, 0, kHtmlHeader},
      {"not by setting", 0, kNotGiven, 0, kHtmlHeader},
      {"the request says no", 1, 0, 0, kHtmlHeader},
      {"the request says yes", 0, 1, 0, "Content-type: text/xml; charset=utf-8\n\n<?xml "},
      {"any nonzero number", 0, -1, 0, "Content-type: text/xml; charset=utf-8\n\n<?xml "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Start start("oak");
    start.ctx.settings.UseXML = c.useXml;
    start.ctx.settings.NoCharset = c.noCharset;
    start.ctx.request.xmlMode = c.xmlMode;
    EXPECT_TRUE(start.Run().starts_with(c.header));
    EXPECT_TRUE(start.goesOn);
  }
}

TEST(StartResponse, NoCharsetHeaderEndsInASemicolon) {
  Start start("oak");
  start.ctx.settings.NoCharset = 1;
  EXPECT_EQ(start.Run(), "Content-type: text/html;\n\n");
}

TEST(StartResponse, PerPageIsCappedAndSelected) {
  Start start("oak");
  start.ctx.settings.FormFormat = 2;
  start.ctx.request.perPage = 500;
  start.Run();
  EXPECT_EQ(start.ctx.search.perPage, 100);
  EXPECT_NE(start[Section::kResultsPerPage].find("<option selected=\"selected\">100</option>"),
            std::string_view::npos);
}

TEST(StartResponse, Page11At10PerPageIsBeyondALimitOf100) {
  Start eleventh("oak");
  eleventh.ctx.request.page = 11;
  EXPECT_EQ(eleventh.Run(),
            std::string(kHtmlHeader) + "<!--Vela Search Engine 7-->\nToo far.<br />");
  EXPECT_FALSE(eleventh.goesOn);
  Start tenth("oak");
  tenth.ctx.request.page = 10;
  EXPECT_EQ(tenth.Run(), kHtmlHeader);
  EXPECT_TRUE(tenth.goesOn);
}

TEST(StartResponse, PagesBeyondTheLimit) {
  const struct {
    const char* what;
    int32_t page, perPage, limit;
    bool goesOn;
  } cases[] = {
      {"the first page", 1, 10, 100, true},
      {"page 0", 0, 10, 100, true},
      {"a negative page", INT32_MIN, 10, 100, true},
      {"the largest page", INT32_MAX, 10, 100, false},
      {"a product beyond 32 bits", 429496731, 10, 100, false},  // 4294967300 is 4 in 32 bits
      {"no results a page count as ten", 10, 0, 100, true},
      {"no results a page, one too far", 11, 0, 100, false},
      {"a limit of nothing", 1, 10, 0, false},
      {"a negative limit", 1, 10, -5, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Start start("oak");
    start.ctx.settings.MaxResultsPerQuery = c.limit;
    start.ctx.request.page = c.page;
    start.ctx.request.perPage = c.perPage;
    start.Run();
    EXPECT_EQ(start.goesOn, c.goesOn);
  }
}

TEST(StartResponse, PageBeyondTheLimitInXml) {
  Start start("oak");
  start.ctx.request.xmlMode = 1;
  start.ctx.request.page = 11;
  const std::string text = start.Run();
  EXPECT_TRUE(text.ends_with("<vela:error>Too far.</vela:error></channel>\n</rss>")) << text;
  EXPECT_FALSE(start.goesOn);
}

TEST(StartResponse, FormIsNeverBuiltInXml) {
  Start start("oak");
  start.ctx.settings.FormFormat = 2;
  start.ctx.request.xmlMode = 1;
  start.Run();
  for (size_t i = 0; i < kSectionCount; ++i) EXPECT_EQ(start[static_cast<Section>(i)], "");
}

TEST(StartResponse, NoFormWithFormatZero) {
  Start start("oak");
  start.ctx.settings.FormFormat = 0;
  start.Run();
  for (size_t i = 0; i < kSectionCount; ++i) EXPECT_EQ(start[static_cast<Section>(i)], "");
  EXPECT_EQ(start.ctx.output.results.view(), "<!--Vela Search Engine 7-->\n");
}

TEST(StartResponse, SearchBoxKeepsTheQueryAsTyped) {
  Start start("<b>, RED");
  start.ctx.settings.FormFormat = 1;
  start.ctx.settings.ToLowerSearchWords = 1;
  start.Run();
  EXPECT_NE(start[Section::kSearchBox].find("value=\"&#60;b&#62;, RED\""), std::string_view::npos);
  EXPECT_EQ(View(start.ctx.query.typedDisplay), "&#60;b&#62;, RED");
  // The display query is the normalised one: the comma is gone, letters are small.
  EXPECT_EQ(View(start.ctx.query.display), "&#60;b&#62;  red");
}

TEST(StartResponse, WordsAreMarkedAsTheSettingsSayForTheFormOfTheAnswer) {
  const struct {
    const char* what;
    int32_t highlighting;
    int32_t xmlHighlight;
    int32_t xmlMode;
    bool marksWords;
  } cases[] = {
      {"nothing says so", 0, 0, 0, false}, {"on the page", 1, 0, 0, true},
      {"only 1 says so", 2, 0, 0, false},  {"what holds for the page holds for XML", 1, 0, 1, true},
      {"in XML alone", 0, 1, 1, true},     {"not on the page", 0, 1, 0, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Start start("oak");
    start.ctx.settings.Highlighting = c.highlighting;
    start.ctx.settings.XMLHighlight = c.xmlHighlight;
    start.ctx.request.xmlMode = c.xmlMode;
    start.Run();
    EXPECT_EQ(start.ctx.search.marksWords, c.marksWords);
    EXPECT_EQ(start.ctx.settings.Highlighting, c.highlighting);
  }
}

TEST(StartResponse, DisplayQueryIsCutBeforeItIsEscaped) {
  // 2134 bytes of room: 426 references of 5 bytes and no part of another.
  Start start(Repeat("<", 2085));
  start.Run();
  EXPECT_EQ(View(start.ctx.query.display), Repeat("&#60;", 426));
}

TEST(StartResponse, AndFlagTable) {
  const struct {
    int32_t defaultToAnd, andMode, expected;
  } cases[] = {{1, kNotGiven, 1}, {0, kNotGiven, 0}, {2, kNotGiven, 0},
               {1, 0, 0},         {0, 1, 1},         {0, 7, 7}};
  for (const auto& c : cases) {
    Start start("oak");
    start.ctx.settings.DefaultToAnd = c.defaultToAnd;
    start.ctx.request.andMode = c.andMode;
    start.Run();
    EXPECT_EQ(start.ctx.search.andMode, c.expected);
  }
}

TEST(StartResponse, WithoutAQuery) {
  const std::string poweredBy =
      "\n<center><p><small>Run by <a href=\"https://vela-search.example/\" target=\"_blank\">"
      "<b>Vela Search Engine</b></a></small></p></center>\n";
  const std::string page = std::string(kHtmlHeader);
  const std::string banner = "<!--Vela Search Engine 7-->\n";
  const struct {
    const char* what;
    bool given;
    int32_t metaFields, velaInfo;
    bool goesOn;
    std::string expected;
  } cases[] = {
      {"an empty query", true, 0, 0, false,
       page + "<div class=\"summary\">Nothing asked.</div>\n" + banner},
      {"no query parameter", false, 0, 0, false, page + banner},
      {"no query parameter, with meta fields", false, 1, 0, false, page + banner},
      {"only meta fields", true, 1, 0, true, page},
      {"powered by", false, 0, 1, false, page + banner + poweredBy},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Start start("");
    start.ctx.request.queryGiven = c.given;
    start.ctx.settings.UseMetaFields = c.metaFields;
    start.ctx.settings.VelaInfo = c.velaInfo;
    EXPECT_EQ(start.Run(), c.expected);
    EXPECT_EQ(start.goesOn, c.goesOn);
    EXPECT_EQ(start.ctx.search.metaOnly, c.goesOn);
  }
}

TEST(StartResponse, QueryOfBlanksGoesOn) {
  Start start("   ");
  start.ctx.settings.UseMetaFields = 1;
  start.Run();
  EXPECT_TRUE(start.goesOn);
  EXPECT_FALSE(start.ctx.search.metaOnly);
  EXPECT_EQ(start.ctx.query.terms.size(), 0);
  EXPECT_EQ(View(start.ctx.query.display), "");
}

}  // namespace
}  // namespace vela
