#include "output/template.h"

#include <gtest/gtest.h>

#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using namespace std::string_literals;
using support::CapturedResponse;
using support::OpenDirectory;
using support::Repeat;

// A page to be filled: section n holds "[n]", the results "[results]".
struct Page {
  OpenDirectory site;
  Settings settings;
  OutputSections sections;
  std::string displayQuery = "a &#38; b";
  std::string scriptUrl = "/cgi/search.cgi";

  Page() {
    EXPECT_TRUE(AllocateSections(sections, 10));
    for (size_t i = 0; i < kSectionCount; ++i) {
      AppendSection(sections, static_cast<Section>(i), "[%d]", static_cast<int>(i));
    }
    AppendResults(sections, "[results]");
  }
  std::string Filled(bool xml = false) {
    CapturedResponse captured(xml);
    FillTemplate(captured.response, {.settings = settings,
                                     .directory = site.directory,
                                     .sections = sections,
                                     .displayQuery = displayQuery,
                                     .scriptUrl = scriptUrl});
    return captured.Text();
  }
  std::string Fill(std::string_view text) {
    site.Write("search_template.html", text);
    return Filled();
  }
};

constexpr char kForm[] = "[17][0][2][3][4][5][6][7][18][1]";
constexpr char kWholePage[] =
    "[17][0][2][3][4][5][6][7][18][1][8][9][16][10][11][14][12][results][15][13]";

TEST(Template, TwoMarkersOnOneLineKeepTheTextBetween) {
  Page page;
  EXPECT_EQ(page.Fill("<p><!--VELA_SHOW_HEADING--> and <!--VELA_SHOW_SUMMARY--></p>\n"),
            "<p>[8] and [9]</p>\n");
}

TEST(Template, UnknownMarkerKeepsTheRestOfItsLine) {
  Page page;
  EXPECT_EQ(page.Fill("a <!--VELA_UNKNOWN--> b <!--VELA_SHOW_SUMMARY--> c\n"
                      "<!--VELA_SHOW_SUMMARY-->\n"),
            "a <!--VELA_UNKNOWN--> b <!--VELA_SHOW_SUMMARY--> c\n[9]\n");
}

TEST(Template, MarkerWithLowerCasePrefixIsCopied) {
  Page page;
  EXPECT_EQ(page.Fill("<!--vela_SHOW_HEADING--><!--VELA_SHOW_HEADING-->\n"),
            "<!--vela_SHOW_HEADING-->[8]\n");
}

TEST(Template, XmlNeverOpensTheTemplate) {
  Page page;  // there is no template file
  page.settings.UseAutoComplete = 1;
  EXPECT_EQ(page.Filled(true), "</channel>\n</rss>");
}

TEST(Template, Missing) {
  Page page;
  page.settings.UseAutoComplete = 1;
  EXPECT_EQ(page.Filled(), "Error: Could not open template file.");
}

TEST(Template, EverySectionMarker) {
  Page page;
  for (size_t i = 0; i < kSectionCount; ++i) {
    SCOPED_TRACE(kSectionMarkers[i]);
    EXPECT_EQ(page.Fill("<" + std::string(kSectionMarkers[i]) + ">\n"),
              "<[" + std::to_string(i) + "]>\n");
  }
}

TEST(Template, MarkersTable) {
  const struct {
    const char* what;
    std::string text;
    std::string expected;
  } cases[] = {
      {"an empty template", "", ""},
      {"no marker", "<html>\n</html>\n", "<html>\n</html>\n"},
      {"no line feed at the end", "<b>", "<b>"},
      {"percent signs", "100% %s %n\n", "100% %s %n\n"},
      {"the whole page", "<!--VELASEARCH-->\n", std::string(kWholePage) + "\n"},
      {"the form", "<!--VELA_SHOW_SEARCHFORM-->", kForm},
      {"the results", "<!--VELA_SHOW_RESULTS-->", "[results]"},
      {"the query", "<!--VELA_SHOW_QUERY-->", "a &#38; b"},
      {"used twice", "<!--VELA_SHOW_HEADING--><!--VELA_SHOW_HEADING-->", "[8][8]"},
      {"at the start, inside, at the end",
       "<!--VELA_SHOW_HEADING-->x<!--VELA_SHOW_SUMMARY-->y<!--VELA_SHOW_RESULTS-->",
       "[8]x[9]y[results]"},
      {"on two lines", "<!--VELA_SHOW_HEADING-->\n<!--VELA_SHOW_SUMMARY-->\n", "[8]\n[9]\n"},
      {"a marker that is not closed", "a<!--VELA_SHOW_HEADING b\n<!--VELA_SHOW_HEADING-->",
       "a<!--VELA_SHOW_HEADING b\n[8]"},
      {"a blank inside a marker", "<!-- VELA_SHOW_HEADING -->", "<!-- VELA_SHOW_HEADING -->"},
      {"lower case behind the prefix", "<!--VELA_show_heading-->", "<!--VELA_show_heading-->"},
      {"a marker longer than a known one", "<!--VELA_SHOW_RESULTSPERPAGE-->", "[4]"},
      {"a known marker that begins another name", "<!--VELASEARCHED-->", "<!--VELASEARCHED-->"},
      {"the prefix alone", "x<!--VELA", "x<!--VELA"},
      {"another comment before a marker", "<!-- a --><!--VELA_SHOW_HEADING-->", "<!-- a -->[8]"},
      {"an unknown marker behind a known one",
       "<!--VELA_SHOW_HEADING--><!--VELA_X--><!--VELA_SHOW_HEADING-->\n",
       "[8]<!--VELA_X--><!--VELA_SHOW_HEADING-->\n"},
      {"a marker across two lines", "<!--VELA_SHOW_\nHEADING-->", "<!--VELA_SHOW_\nHEADING-->"},
      {"a carriage return", "<!--VELA_SHOW_HEADING-->\r\n", "[8]\r\n"},
      {"a NUL hides the rest of its line", "a\0b\nc\n"s, "ac\n"},
  };
  Page page;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(page.Fill(c.text), c.expected);
  }
}

TEST(Template, MarkerInALongLine) {
  Page page;
  const std::string marker = "<!--VELA_SHOW_HEADING-->";
  const std::string line = Repeat("a", 1500) + marker + Repeat("b", 1500 - marker.size());
  ASSERT_EQ(line.size(), 3000u);
  EXPECT_EQ(page.Fill(line + "\n"),
            Repeat("a", 1500) + "[8]" + Repeat("b", 1500 - marker.size()) + "\n");
}

TEST(Template, MarkerAtTheEndOfAPieceAndAcrossTwo) {
  Page page;
  const std::string marker = "<!--VELA_SHOW_HEADING-->";  // 24 bytes
  ASSERT_EQ(marker.size(), 24u);
  const struct {
    const char* what;
    size_t before;
    bool replaced;
  } cases[] = {
      {"ends with the piece", 999, true},         {"one byte in the next piece", 1000, false},
      {"one byte in this piece", 1022, false},    {"starts the next piece", 1023, true},
      {"ends with the second piece", 2022, true}, {"across the second and the third", 2023, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(page.Fill(Repeat("a", c.before) + marker + "z\n"),
              Repeat("a", c.before) + (c.replaced ? "[8]" : marker) + "z\n");
  }
}

TEST(Template, UnknownMarkerKeepsOnlyTheRestOfItsPiece) {
  Page page;
  const std::string start = "<!--VELA_X-->";
  const std::string filler = Repeat("a", 1023 - start.size());
  EXPECT_EQ(page.Fill(start + filler + "<!--VELA_SHOW_HEADING-->\n"), start + filler + "[8]\n");
}

TEST(Template, SectionsThatAreNotFilledWriteNothing) {
  Page page;
  page.sections = OutputSections();  // not even memory
  page.displayQuery = "";
  EXPECT_EQ(page.Fill("<<!--VELASEARCH-->|<!--VELA_SHOW_QUERY-->|<!--VELA_SHOW_RESULTS-->>\n"),
            "<||>\n");
}

TEST(Template, SectionsAreNoFormat) {
  Page page;
  AppendSection(page.sections, Section::kHeading, "%s", "%d%n");
  EXPECT_EQ(page.Fill("<!--VELA_SHOW_HEADING-->"), "[8]%d%n");
}

TEST(Template, LongSectionsAreWrittenWhole) {
  Page page;
  std::string expected = "[results]";
  for (int i = 0; i < 20; ++i) {
    AppendResults(page.sections, "%s", Repeat("r", 5000).c_str());
    expected += Repeat("r", 5000);
  }
  EXPECT_EQ(page.Fill("<!--VELA_SHOW_RESULTS-->"), expected);
}

constexpr char kAutoComplete[] =
    "<script language=\"javascript\" type=\"text/javascript\">\n"
    "var VelaAutoComplete_URL = \"/cgi/search.cgi?vela_ac=1\";\n"
    "function VelaAutoComplete_OnLoad(id) {}\n"
    "if (window.addEventListener) window.addEventListener('load', "
    "function() { VelaAutoComplete_OnLoad('vela_searchbox');}, false);"
    " else if (window.attachEvent) window.attachEvent('onload', "
    "function() { VelaAutoComplete_OnLoad('vela_searchbox');});"
    " else window['onload'] = "
    "function() { VelaAutoComplete_OnLoad('vela_searchbox');}</script>\n"
    "<style>\n.box {}\n</style>\n";
constexpr char kDatePicker[] =
    "<style>\n.day {}\n</style>\n"
    "<script language=\"javascript\" type=\"text/javascript\">\n"
    "function displayDatePicker() {}\n</script>\n";

struct ScriptPage : Page {
  ScriptPage(int32_t autoComplete, int32_t dateRange) {
    settings.UseAutoComplete = autoComplete;
    settings.DateRangeSearch = dateRange;
    site.Write("vela_autocomplete.js", "function VelaAutoComplete_OnLoad(id) {}\n");
    site.Write("vela_autocomplete.css", ".box {}\n");
    site.Write("vela_datepicker.js", "function displayDatePicker() {}\n");
    site.Write("vela_datepicker.css", ".day {}\n");
  }
};

TEST(HeadScripts, WithoutHeadFollowTheLastLine) {
  ScriptPage page(1, 0);
  EXPECT_EQ(page.Fill("<p>\n</p>"), std::string("<p>\n</p>") + kAutoComplete);
}

TEST(HeadScripts, Table) {
  const std::string both = std::string(kAutoComplete) + kDatePicker;
  const struct {
    const char* what;
    int32_t autoComplete;
    int32_t dateRange;
    std::string text;
    std::string expected;
  } cases[] = {
      {"none are needed", 0, 0, "<head>\n</head>\n", "<head>\n</head>\n"},
      {"other values need none", 2, -1, "<head>\n</head>\n", "<head>\n</head>\n"},
      {"autocomplete", 1, 0, "<head>\n</head>\n",
       "<head>\n" + std::string(kAutoComplete) + "</head>\n"},
      {"date picker", 0, 1, "<head>\n</head>\n",
       "<head>\n" + std::string(kDatePicker) + "</head>\n"},
      {"both", 1, 1, "<head>\n</head>\n", "<head>\n" + both + "</head>\n"},
      {"before the line, not before the tag", 0, 1, "<head><title>T</title></head><body>\n",
       kDatePicker + "<head><title>T</title></head><body>\n"s},
      {"only once", 0, 1, "</head>\n</head>\n", kDatePicker + "</head>\n</head>\n"s},
      {"the tag in upper case is none", 0, 1, "</HEAD>\n", "</HEAD>\n"s + kDatePicker},
      {"before the text ahead of a marker", 0, 1, "a<!--VELA_SHOW_HEADING--></head>\n",
       kDatePicker + "a[8]</head>\n"s},
      {"an empty template", 0, 1, "", kDatePicker},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ScriptPage page(c.autoComplete, c.dateRange);
    EXPECT_EQ(page.Fill(c.text), c.expected);
  }
}

TEST(HeadScripts, MissingFilesAreToldInTheirPlaces) {
  Page page;
  page.settings.DateRangeSearch = 1;
  EXPECT_EQ(page.Fill("</head>\n"),
            "<style>\nError: Failed to include file: vela_datepicker.css\n<br \\></style>\n"
            "<script language=\"javascript\" type=\"text/javascript\">\n"
            "Error: Failed to include file: vela_datepicker.js\n<br \\></script>\n"
            "</head>\n");
}

TEST(HeadScripts, LongIncludedLinesAreCopiedWhole) {
  ScriptPage page(0, 1);
  const std::string script = Repeat("x", 5000);
  page.site.Write("vela_datepicker.js", script);
  EXPECT_EQ(page.Fill("</head>\n"),
            "<style>\n.day {}\n</style>\n"
            "<script language=\"javascript\" type=\"text/javascript\">\n" +
                script + "</script>\n</head>\n");
}

TEST(HeadScripts, AddressCannotEndItsText) {
  ScriptPage page(1, 0);
  page.scriptUrl = "/a\"b'</script>\\&\n";
  const std::string filled = page.Fill("</head>\n");
  EXPECT_NE(filled.find("var VelaAutoComplete_URL = "
                        "\"/a%22b%27%3C/script%3E%5C%26%0A?vela_ac=1\";\n"),
            std::string::npos);
}

}  // namespace
}  // namespace vela
