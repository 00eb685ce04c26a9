#include "output/links.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::DefineCategories;
using support::DefineMetaFields;
using support::Repeat;

TEST(LinkParameters, QueryIsUrlEncoded) {
  Settings settings;
  const LinkParameters links = MakeLinkParameters(settings, {}, "a \"b c\" -d&e", {});
  EXPECT_EQ(View(links.query), "a+%22b+c%22+-d%26e");
  EXPECT_EQ(View(links.categories), "");
  EXPECT_EQ(View(links.dates), "");
  EXPECT_EQ(View(links.metaFields), "");
}

TEST(LinkParameters, LongestQuery) {
  Settings settings;
  const LinkParameters links = MakeLinkParameters(settings, {}, Repeat("/", 2085), {});
  EXPECT_EQ(View(links.query), Repeat("%2F", 2085));
}

TEST(LinkParameters, CategoriesTable) {
  const struct {
    const char* what;
    int32_t useCats;
    std::vector<int32_t> selected;
    const char* expected;
  } cases[] = {
      {"none", 1, {}, ""},
      {"all", 1, {-1}, ""},
      {"all and one more", 1, {-1, 2}, ""},
      {"one", 1, {2}, "&amp;vela_cat%5B%5D=2"},
      {"two", 1, {2, 0}, "&amp;vela_cat%5B%5D=2&amp;vela_cat%5B%5D=0"},
      {"a number that is no category", 1, {3, 1}, "&amp;vela_cat%5B%5D=1"},
      {"categories not in use", 0, {1}, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    DefineCategories(settings, {"a", "b", "c"});
    settings.UseCats = c.useCats;
    SearchRequest request;
    request.categories = c.selected;
    EXPECT_EQ(View(MakeLinkParameters(settings, request, "", {}).categories), c.expected);
  }
}

TEST(LinkParameters, DatesOnlyWhileTheRangeIsValid) {
  Settings settings;
  SearchRequest request;
  Set(request.dateFrom, "1/2/2010");
  Set(request.dateTo, "3/4/2010");
  EXPECT_EQ(View(MakeLinkParameters(settings, request, "", {true, 1, 2}).dates),
            "&amp;vela_datefrom=1/2/2010&amp;vela_dateto=3/4/2010");
  EXPECT_EQ(View(MakeLinkParameters(settings, request, "", {false, 0, 0}).dates), "");
}

TEST(LinkParameters, DatesAreEscaped) {
  Settings settings;
  SearchRequest request;
  Set(request.dateFrom, "1/2/2010\"");
  Set(request.dateTo, "3/4/2010<<<<");
  EXPECT_EQ(View(MakeLinkParameters(settings, request, "", {true, 1, 2}).dates),
            "&amp;vela_datefrom=1/2/2010&#34;&amp;vela_dateto=3/4/2010&#60;");
}

TEST(LinkParameters, MetaFieldsTable) {
  const struct {
    const char* what;
    int32_t type;
    const char* text;
    std::vector<uint8_t> chosen;
    const char* expected;
  } cases[] = {
      {"text", 1, "red oak", {}, "&amp;field=red+oak"},
      {"text that could be markup", 1, "<a&b>", {}, "&amp;field=%3Ca%26b%3E"},
      {"empty text", 1, "  ", {}, ""},
      {"a number", kMetaNumeric, "42", {}, "&amp;field=42"},
      {"no number", kMetaNumeric, "many", {}, ""},
      {"money", kMetaMoney, "1.50", {}, "&amp;field=1%2E50"},
      {"a choice", kMetaDropDown, "2", {}, "&amp;field=2"},
      {"no choice", kMetaDropDown, "-1", {}, ""},
      {"several choices", kMetaMultiple, "", {2, 0}, "&amp;field[]=2&amp;field[]=0"},
      {"any choice", kMetaMultiple, "", {255}, ""},
      {"no choices", kMetaMultiple, "", {}, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    DefineMetaFields(settings, {{"field", c.type, "Label", 0, {"a", "b", "c"}}});
    std::vector<MetaValue> values(1);
    values[0].text = c.text;
    values[0].chosenCount = static_cast<uint8_t>(c.chosen.size());
    for (size_t i = 0; i < c.chosen.size(); ++i) values[0].chosen[i] = c.chosen[i];
    SearchRequest request;
    request.metaValues = values;
    EXPECT_EQ(View(MakeLinkParameters(settings, request, "", {}).metaFields), c.expected);
  }
}

TEST(LinkParameters, MetaFieldsFollowTheirDefinitions) {
  Settings settings;
  DefineMetaFields(settings, {{"a", 1, "", 0}, {"b", 1, "", 0}, {"c", 1, "", 0}});
  std::vector<MetaValue> values(3);
  values[0].text = "1";
  values[2].text = "3";
  SearchRequest request;
  request.metaValues = values;
  EXPECT_EQ(View(MakeLinkParameters(settings, request, "", {}).metaFields), "&amp;a=1&amp;c=3");
}

TEST(Link, SeparatorOfTheSettings) {
  Settings settings;
  Set(settings.LinkBackURL, "search.cgi");
  LinkText query;
  Set(query, "vela_query=a");
  EXPECT_EQ(View(MakeLink(settings, query)), "search.cgi?vela_query=a");
  Set(settings.LinkBackURL, "index.php?id=5");
  Set(settings.linkBackSeparator, "&amp;");
  EXPECT_EQ(View(MakeLink(settings, query)), "index.php?id=5&amp;vela_query=a");
}

TEST(Link, IsCutAt2083Bytes) {
  Settings settings;
  Set(settings.LinkBackURL, "s");
  EXPECT_EQ(View(MakeLinkf(settings, "%s", Repeat("q", 2081).c_str())), "s?" + Repeat("q", 2081));
  EXPECT_EQ(View(MakeLinkf(settings, "%s", Repeat("q", 2082).c_str())), "s?" + Repeat("q", 2081));
  // The link query is cut before it is joined.
  Set(settings.LinkBackURL, "");
  Set(settings.linkBackSeparator, "");
  EXPECT_EQ(View(MakeLinkf(settings, "%s%d", Repeat("q", 2082).c_str(), 78)),
            Repeat("q", 2082) + "7");
}

}  // namespace
}  // namespace vela
