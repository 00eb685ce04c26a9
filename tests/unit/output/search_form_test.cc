#include "output/search_form.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::DefineCategories;
using support::DefineMetaFields;

struct Form {
  Settings settings;
  SearchRequest request;
  OutputSections sections;
  std::string displayQuery = "oak";
  std::string scriptUrl = "/cgi/search.cgi";

  explicit Form(int32_t format) {
    support::SetLanguageTexts(settings);
    settings.FormFormat = format;
    EXPECT_TRUE(AllocateSections(sections, 10));
  }
  void Fill() { FillSearchForm(sections, settings, request, displayQuery.c_str(), scriptUrl); }
  std::string_view operator[](Section section) const { return SectionText(sections, section); }
};

constexpr char kFormTag[] =
    "<form method=\"get\" action=\"/cgi/search.cgi\" class=\"vela_searchform\">\n";

TEST(SearchForm, NoneLeavesAllSectionsEmpty) {
  for (int32_t format : {0, -1}) {
    Form form(format);
    DefineCategories(form.settings, {"a"});
    form.settings.DateRangeSearch = 1;
    form.Fill();
    for (size_t i = 0; i < kSectionCount; ++i) EXPECT_EQ(form[static_cast<Section>(i)], "");
  }
}

TEST(SearchForm, BasicFormByteByByte) {
  // Every number above 0 but 2 is the basic form.
  for (int32_t format : {1, 3, 100}) {
    SCOPED_TRACE(format);
    Form form(format);
    DefineCategories(form.settings, {"a"});
    DefineMetaFields(form.settings, {{"f", 1, "F", 0}});
    form.settings.DateRangeSearch = 1;
    form.request.perPage = 25;
    form.request.andMode = 1;
    form.request.sort = 2;
    form.Fill();
    EXPECT_EQ(form[Section::kFormStart],
              std::string(kFormTag) +
                  "<input type=\"hidden\" name=\"vela_per_page\" value=\"25\" />\n"
                  "<input type=\"hidden\" name=\"vela_and\" value=\"1\" />\n"
                  "<input type=\"hidden\" name=\"vela_sort\" value=\"2\" />\n"
                  "<input type=\"hidden\" name=\"vela_xml\" value=\"0\" />\n");
    EXPECT_EQ(form[Section::kFormEnd], "</form>\n");
    EXPECT_EQ(form[Section::kSearchBox],
              "<label for=\"vela_searchbox\">Find</label><input type=\"text\" name=\"vela_query\" "
              "size=\"20\" value=\"oak\" id=\"vela_searchbox\" class=\"vela_searchbox\" />\n");
    EXPECT_EQ(form[Section::kSearchButton],
              "<input type=\"submit\" value=\"Go\" class=\"vela_button\" />\n");
    for (Section section :
         {Section::kResultsPerPage, Section::kMatchOptions, Section::kCategories,
          Section::kCustomMetaOptions, Section::kDateRange, Section::kJavaScripts}) {
      EXPECT_EQ(form[section], "");
    }
  }
}

TEST(SearchForm, AdvancedFormByteByByte) {
  Form form(2);
  form.request.sort = 1;
  form.Fill();
  EXPECT_EQ(form[Section::kFormStart],
            std::string(kFormTag) +
                "<input type=\"hidden\" name=\"vela_sort\" value=\"1\" />\n"
                "<input type=\"hidden\" name=\"vela_xml\" value=\"0\" />\n");
  EXPECT_EQ(form[Section::kFormEnd], "</form>\n");
  EXPECT_EQ(form[Section::kResultsPerPage],
            "<span class=\"vela_results_per_page\"><label for=\"vela_per_page\">Per page</label>\n"
            "<select name=\"vela_per_page\" id=\"vela_per_page\">\n"
            "<option selected=\"selected\">10</option>\n"
            "<option>20</option>\n"
            "<option>50</option>\n"
            "<option>100</option>\n"
            "</select><br /><br /></span>\n");
  EXPECT_EQ(form[Section::kMatchOptions],
            "<span class=\"vela_match\"><label for=\"vela_match\">Match</label>\n"
            "<label for=\"vela_match_any\"><input type=\"radio\" id=\"vela_match_any\" "
            "name=\"vela_and\" value=\"0\" checked=\"checked\" />some</label>\n"
            "<label for=\"vela_match_all\"><input type=\"radio\" id=\"vela_match_all\" "
            "name=\"vela_and\" value=\"1\" />every</label>\n"
            "<br /><br /></span>\n");
  EXPECT_EQ(form[Section::kCategories], "");
  EXPECT_EQ(form[Section::kCustomMetaOptions], "");
  EXPECT_EQ(form[Section::kDateRange], "");
  EXPECT_EQ(form[Section::kJavaScripts], "");
}

TEST(SearchForm, PerPageThatIsNoChoiceSelectsNone) {
  for (int32_t perPage : {15, 0, -10, 1000}) {
    Form form(2);
    form.request.perPage = perPage;
    form.Fill();
    EXPECT_EQ(form[Section::kResultsPerPage].find("selected"), std::string_view::npos);
  }
}

TEST(SearchForm, PerPageOf100IsSelected) {
  Form form(2);
  form.request.perPage = 100;
  form.Fill();
  EXPECT_NE(form[Section::kResultsPerPage].find("<option selected=\"selected\">100</option>\n"),
            std::string_view::npos);
  EXPECT_NE(form[Section::kResultsPerPage].find("<option>10</option>\n"), std::string_view::npos);
}

TEST(SearchForm, AnyNonzeroFlagChecksAll) {
  for (int32_t flag : {1, 2, -1}) {
    Form form(2);
    form.request.andMode = flag;
    form.Fill();
    EXPECT_EQ(form[Section::kMatchOptions],
              "<span class=\"vela_match\"><label for=\"vela_match\">Match</label>\n"
              "<label for=\"vela_match_any\"><input type=\"radio\" id=\"vela_match_any\" "
              "name=\"vela_and\" value=\"0\" />some</label>\n"
              "<label for=\"vela_match_all\"><input type=\"radio\" id=\"vela_match_all\" "
              "name=\"vela_and\" value=\"1\" checked=\"checked\" />every</label>\n"
              "<br /><br /></span>\n");
  }
}

TEST(SearchForm, CategoryTwiceInTheRequestIsCheckedTwice) {
  Form form(2);
  DefineCategories(form.settings, {"a", "b", "c"});
  form.settings.SearchMultiCats = 1;
  const int32_t selected[] = {2, 2};
  form.request.categories = selected;
  form.Fill();
  EXPECT_EQ(form[Section::kCategories],
            "<span class=\"vela_categories\"><label for=\"vela_cat\">Shelf</label>"
            "<ul>\n"
            "<li><input type=\"checkbox\" name=\"vela_cat[]\" id=\"vela_cat-1\" value=\"-1\">"
            "<label for=\"vela_cat-1\">Any</label></input></li>\n"
            "<li><input type=\"checkbox\" name=\"vela_cat[]\" id=\"vela_cat0\" value=\"0\" />"
            "<label for=\"vela_cat0\">a</label></li>\n"
            "<li><input type=\"checkbox\" name=\"vela_cat[]\" id=\"vela_cat1\" value=\"1\" />"
            "<label for=\"vela_cat1\">b</label></li>\n"
            "<li><input type=\"checkbox\" name=\"vela_cat[]\" id=\"vela_cat2\" value=\"2\""
            " checked=\"checked\" checked=\"checked\" /><label for=\"vela_cat2\">c</label></li>\n"
            "</ul><br /><br /></span>\n"
            "</span>\n");
}

TEST(SearchForm, AllCategoriesCheckOnlyTheFirstBox) {
  Form form(2);
  DefineCategories(form.settings, {"a"});
  form.settings.SearchMultiCats = 1;
  const int32_t selected[] = {-1, 0};
  form.request.categories = selected;
  form.Fill();
  EXPECT_EQ(form[Section::kCategories],
            "<span class=\"vela_categories\"><label for=\"vela_cat\">Shelf</label>"
            "<ul>\n"
            "<li><input type=\"checkbox\" name=\"vela_cat[]\" id=\"vela_cat-1\" value=\"-1\""
            " checked=\"checked\"><label for=\"vela_cat-1\">Any</label></input></li>\n"
            "<li><input type=\"checkbox\" name=\"vela_cat[]\" id=\"vela_cat0\" value=\"0\" />"
            "<label for=\"vela_cat0\">a</label></li>\n"
            "</ul><br /><br /></span>\n"
            "</span>\n");
}

TEST(SearchForm, CategoryChoice) {
  const struct {
    const char* what;
    std::vector<int32_t> selected;
    const char* first;
    const char* second;
  } cases[] = {
      {"all", {-1}, "", ""},
      {"none", {}, "", ""},
      {"the second", {1}, "", " selected=\"selected\""},
      {"of several only the first counts", {0, 1}, " selected=\"selected\"", ""},
      {"a number that is no category", {7}, "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Form form(2);
    DefineCategories(form.settings, {"a", "b"});
    form.request.categories = c.selected;
    form.Fill();
    EXPECT_EQ(form[Section::kCategories],
              "<span class=\"vela_categories\"><label for=\"vela_cat\">Shelf</label>"
              "<select name=\"vela_cat[]\" id=\"vela_cat\"><option value=\"-1\">Any</option>"
              "<option value=\"0\"" +
                  std::string(c.first) + ">a</option><option value=\"1\"" + c.second +
                  ">b</option></select>&nbsp;&nbsp;\n</span>\n");
  }
}

TEST(SearchForm, DatePickerGetsTheOrderOfTheFormat) {
  const struct {
    int32_t format;
    std::string order;
  } cases[] = {{1, "mdy"}, {0, "dmy"}, {2, "dmy"}, {-1, "dmy"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.format);
    Form form(2);
    form.settings.DateRangeSearch = 1;
    form.settings.DateRangeFormat = c.format;
    Set(form.request.dateFrom, "1/2/2010");
    Set(form.request.dateTo, "\"><b>");
    form.Fill();
    EXPECT_EQ(form[Section::kDateRange],
              "<span class=\"vela_daterange\">\n"
              "<label for=\"vela_datefrom\">From </label><input id=\"vela_datefrom\" "
              "name=\"vela_datefrom\" value=\"1/2/2010\"><input type=\"button\" value=\"Pick\" "
              "onclick=\"displayDatePicker('vela_datefrom', false, '" +
                  c.order +
                  "');\" />"
                  "<label for=\"vela_dateto\">To </label><input id=\"vela_dateto\" "
                  "name=\"vela_dateto\" value=\"&#34;&#62;&#60;b&#62;\"><input type=\"button\" "
                  "value=\"Pick\" onclick=\"displayDatePicker('vela_dateto', false, '" +
                  c.order + "');\" /></span>\n");
  }
}

TEST(SearchForm, DateRangeOnlyForTheValue1) {
  for (int32_t offered : {0, 2}) {
    Form form(2);
    form.settings.DateRangeSearch = offered;
    form.Fill();
    EXPECT_EQ(form[Section::kDateRange], "");
  }
}

TEST(SearchForm, QueryWithMarkup) {
  Form form(1);
  form.displayQuery = "&#60;b&#62;";  // as it is handed in
  form.Fill();
  EXPECT_NE(form[Section::kSearchBox].find("value=\"&#60;b&#62;\""), std::string_view::npos);
}

TEST(SearchForm, ActionCannotEndItsAttribute) {
  Form form(1);
  form.scriptUrl = "/a\"><b>'&\\\x01?x=y";
  form.Fill();
  EXPECT_TRUE(form[Section::kFormStart].starts_with(
      "<form method=\"get\" action=\"/a%22%3E%3Cb%3E%27%26%5C%01?x=y\" "
      "class=\"vela_searchform\">\n"));
}

struct MetaCase {
  const char* what;
  support::MetaFieldText field;
  const char* text;
  std::vector<uint8_t> chosen;
  std::string expected;
};

TEST(SearchForm, MetaFieldsTable) {
  const std::vector<std::string> values = {"red", "blue"};
  const MetaCase cases[] = {
      {"numeric",
       {"size", kMetaNumeric, "Size", 0},
       "12",
       {},
       "<label for=\"vela_metaform_size\">Size: </label><input type=\"text\" "
       "id=\"vela_metaform_size\" name=\"size\" size=\"20\" value=\"12\" "
       "class=\"vela_metaform_numeric\" />\n"},
      {"money",
       {"cost", kMetaMoney, "Cost", 0},
       "1.50",
       {},
       "<label for=\"vela_metaform_cost\">Cost: </label>&#36;<input type=\"text\" "
       "id=\"vela_metaform_cost\" name=\"cost\" size=\"7\" value=\"1.50\" "
       "class=\"vela_metaform_money\" />\n"},
      {"text, escaped",
       {"wood", 1, "Wood", 0},
       "<\"oak\">",
       {},
       "<label for=\"vela_metaform_wood\">Wood: </label><input type=\"text\" "
       "id=\"vela_metaform_wood\" name=\"wood\" size=\"20\" "
       "value=\"&#60;&#34;oak&#34;&#62;\" class=\"vela_metaform_text\" />\n"},
      {"any other kind is text",
       {"wood", 77, "Wood", 0},
       "",
       {},
       "<label for=\"vela_metaform_wood\">Wood: </label><input type=\"text\" "
       "id=\"vela_metaform_wood\" name=\"wood\" size=\"20\" value=\"\" "
       "class=\"vela_metaform_text\" />\n"},
      {"drop-down, chosen",
       {"color", kMetaDropDown, "Color", 0, values},
       "1",
       {},
       "<label for=\"vela_metaform_color\">Color: </label><select name=\"color\" "
       "id=\"vela_metaform_color\" class=\"vela_metaform_dropdown\">\n"
       "<option value=\"-1\">Any</option><option value=\"0\">red</option>"
       "<option value=\"1\" selected=\"selected\">blue</option></select>\n"},
      {"drop-down, empty",
       {"color", kMetaDropDown, "Color", 0, values},
       "",
       {},
       "<label for=\"vela_metaform_color\">Color: </label><select name=\"color\" "
       "id=\"vela_metaform_color\" class=\"vela_metaform_dropdown\">\n"
       "<option value=\"-1\">Any</option><option value=\"0\">red</option>"
       "<option value=\"1\">blue</option></select>\n"},
      {"several, one of them twice",
       {"color", kMetaMultiple, "Color", 0, values},
       "",
       {0, 1, 1, 9},
       "<label for=\"vela_metaform_color\">Color: </label><select multiple "
       "id=\"vela_metaform_color\" name=\"color[]\" class=\"vela_metaform_multi\">\n"
       "<option value=\"-1\">Any</option>"
       "<option value=\"0\" selected=\"selected\">red</option>"
       "<option value=\"1\" selected=\"selected\" selected=\"selected\">blue</option>"
       "</select>&nbsp;&nbsp;\n"},
      {"several, none chosen",
       {"color", kMetaMultiple, "Color", 0, values},
       "",
       {},
       "<label for=\"vela_metaform_color\">Color: </label><select multiple "
       "id=\"vela_metaform_color\" name=\"color[]\" class=\"vela_metaform_multi\">\n"
       "<option value=\"-1\">Any</option><option value=\"0\">red</option>"
       "<option value=\"1\">blue</option></select>&nbsp;&nbsp;\n"},
  };
  for (const MetaCase& c : cases) {
    SCOPED_TRACE(c.what);
    Form form(2);
    DefineMetaFields(form.settings, {c.field});
    std::vector<MetaValue> metaValues(1);
    metaValues[0].text = c.text;
    metaValues[0].chosenCount = static_cast<uint8_t>(c.chosen.size());
    std::copy(c.chosen.begin(), c.chosen.end(), metaValues[0].chosen);
    form.request.metaValues = metaValues;
    form.Fill();
    EXPECT_EQ(form[Section::kCustomMetaOptions],
              "<span class=\"vela_metaform\">\n" + c.expected + "</span>\n");
  }
}

TEST(SearchForm, MetaFieldsInOrder) {
  Form form(2);
  DefineMetaFields(form.settings, {{"a", 1, "A", 0}, {"b", kMetaNumeric, "B", 0}});
  std::vector<MetaValue> values(2);
  form.request.metaValues = values;
  form.Fill();
  const std::string_view text = form[Section::kCustomMetaOptions];
  EXPECT_LT(text.find("name=\"a\""), text.find("name=\"b\""));
  EXPECT_NE(text.find("name=\"b\""), std::string_view::npos);
  Form without(2);
  DefineMetaFields(without.settings, {{"a", 1, "A", 0}});
  without.settings.UseMetaFields = 0;
  without.Fill();
  EXPECT_EQ(without[Section::kCustomMetaOptions], "");
}

}  // namespace
}  // namespace vela
