#include "search/filters.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "support/failing_allocation.h"
#include "support/loaded_site.h"

namespace vela {
namespace {

using namespace std::string_literals;
using support::DefineCategories;
using support::DefineMetaFields;
using support::IndexBuilder;
using support::LittleEndian;
using support::LoadedSite;
using support::MetaFieldText;
using support::NewPage;
using support::PageFields;
using support::Repeat;

// Local time is what the machine says; each test names its own.
class LocalTime {
 public:
  explicit LocalTime(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
  ~LocalTime() {
    setenv("TZ", "UTC0", 1);
    tzset();
  }
};

DateRange RangeOf(const std::string& from, const std::string& to, int32_t format) {
  Settings settings;
  settings.DateRangeSearch = 1;
  settings.DateRangeFormat = format;
  SearchRequest request;
  Set(request.dateFrom, from);
  Set(request.dateTo, to);
  return ReadDateRange(request, settings);
}

// Seconds of 2010-02-03 00:00:00 and 2010-03-02 00:00:00.
constexpr int32_t kThirdOfFebruary = 1265155200;
constexpr int32_t kSecondOfMarch = 1267488000;
constexpr int32_t kLastSecond = 86399;

TEST(DateRange, FormatTellsDayFromMonth) {
  const LocalTime utc("UTC0");
  EXPECT_EQ(RangeOf("02/03/2010", "02/03/2010", 1).from, kThirdOfFebruary);
  EXPECT_EQ(RangeOf("02/03/2010", "02/03/2010", 0).from, kSecondOfMarch);
  EXPECT_EQ(RangeOf("02/03/2010", "02/03/2010", 2).from, kSecondOfMarch);
}

TEST(DateRange, DayZeroDisablesTheRange) { EXPECT_FALSE(RangeOf("0/5/2010", "1/6/2010", 0).valid); }

TEST(DateRange, TypedTable) {
  const LocalTime utc("UTC0");
  const struct {
    const char* what;
    const char* from;
    const char* to;
    bool valid;
    int32_t fromSeconds, toSeconds;
  } cases[] = {
      {"two days", "3/2/2010", "2/3/2010", true, kThirdOfFebruary, kSecondOfMarch + kLastSecond},
      {"one day", "3/2/2010", "3/2/2010", true, kThirdOfFebruary, kThirdOfFebruary + kLastSecond},
      {"the end before the start", "2/3/2010", "3/2/2010", true, kSecondOfMarch,
       kThirdOfFebruary + kLastSecond},
      {"blanks before numbers", " 3/ 2/ 2010", "2/3/2010", true, kThirdOfFebruary,
       kSecondOfMarch + kLastSecond},
      {"text behind", "3/2/2010x", "2/3/2010/9", true, kThirdOfFebruary,
       kSecondOfMarch + kLastSecond},
      {"leading zeros and plus signs", "+03/002/2010", "02/03/2010", true, kThirdOfFebruary,
       kSecondOfMarch + kLastSecond},
      {"a day beyond its month goes on into the next", "31/2/2010", "2/3/2010", true,
       kSecondOfMarch + 86400, kSecondOfMarch + kLastSecond},  // 3 March
      {"before 1970", "1/1/1960", "2/3/2010", true, -315619200, kSecondOfMarch + kLastSecond},
      {"blanks before a slash", "3 /2/2010", "2/3/2010", false, 0, 0},
      {"hyphens", "3-2-2010", "2-3-2010", false, 0, 0},
      {"only two numbers", "3/2", "2/3/2010", false, 0, 0},
      {"no end", "3/2/2010", "", false, 0, 0},
      {"no start", "", "3/2/2010", false, 0, 0},
      {"words", "today", "now", false, 0, 0},
      {"month 0", "3/0/2010", "2/3/2010", false, 0, 0},
      {"year 0", "3/2/0", "2/3/2010", false, 0, 0},
      {"a negative day", "-3/2/2010", "2/3/2010", false, 0, 0},
      {"an end of no day", "3/2/2010", "0/3/2010", false, 0, 0},
      {"an end beyond 32 bits", "3/2/2010", "19/1/2038", false, 0, 0},
      {"a start beyond 32 bits", "20/1/2038", "21/1/2038", false, 0, 0},
      {"the last day that fits", "18/1/2038", "18/1/2038", true, 2147385600, 2147471999},
      {"a start before 32 bits", "1/1/1900", "2/3/2010", false, 0, 0},
      {"an absurd year", "1/1/99999", "2/3/2010", false, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const DateRange range = RangeOf(c.from, c.to, 0);
    EXPECT_EQ(range.valid, c.valid);
    if (c.valid) {
      EXPECT_EQ(range.from, c.fromSeconds);
      EXPECT_EQ(range.to, c.toSeconds);
    }
  }
}

TEST(DateRange, LocalDaysInStandardTime) {
  const LocalTime middleEurope("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(RangeOf("3/2/2010", "3/2/2010", 0).from, kThirdOfFebruary - 3600);
  // In summer, too, the day begins by standard time.
  EXPECT_EQ(RangeOf("1/7/2010", "1/7/2010", 0).from, 1277938800);
  EXPECT_EQ(RangeOf("1/7/2010", "1/7/2010", 0).to, 1277938800 + kLastSecond);
}

TEST(DateRange, SecondsWinOverTypedDates) {
  const LocalTime utc("UTC0");
  const struct {
    const char* what;
    int32_t from, to;
    int32_t expectedFrom, expectedTo;
  } cases[] = {
      {"both positive", 5, 7, 5, 7},
      {"no from", 0, 7, kThirdOfFebruary, kThirdOfFebruary + kLastSecond},
      {"no to", 5, 0, kThirdOfFebruary, kThirdOfFebruary + kLastSecond},
      {"a negative number", -5, 7, kThirdOfFebruary, kThirdOfFebruary + kLastSecond},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Settings settings;
    settings.DateRangeSearch = 1;
    SearchRequest request;
    request.lastTimeFrom = c.from;
    request.lastTimeTo = c.to;
    Set(request.dateFrom, "3/2/2010");
    Set(request.dateTo, "3/2/2010");
    const DateRange range = ReadDateRange(request, settings);
    EXPECT_TRUE(range.valid);
    EXPECT_EQ(range.from, c.expectedFrom);
    EXPECT_EQ(range.to, c.expectedTo);
  }
}

TEST(DateRange, NotOffered) {
  for (int32_t offered : {0, 2, -1}) {
    Settings settings;
    settings.DateRangeSearch = offered;
    SearchRequest request;
    request.lastTimeFrom = 5;
    request.lastTimeTo = 7;
    EXPECT_FALSE(ReadDateRange(request, settings).valid);
  }
}

IndexBuilder Pages(const std::vector<PageFields>& pages) {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4");
  for (const PageFields& page : pages) builder.Page(page);
  return builder;
}

PageFields DatedPage(uint32_t date) {
  PageFields page = NewPage("a.html");
  page.dateTime = date;
  return page;
}

PageFields PageIn(const std::string& categoryBits) {
  PageFields page = NewPage("a.html");
  page.categoryBits = categoryBits;
  return page;
}

PageFields PageWith(const std::string& metaData) {
  PageFields page = NewPage("a.html");
  page.metaData = metaData;
  return page;
}

struct Filtering {
  LoadedSite site;
  SearchRequest request;
  SiteRestriction restriction;
  PageFilters filters;

  explicit Filtering(const std::vector<PageFields>& pages) : site(Pages(pages)) {}
  bool TryPrepare() {
    return PrepareFilters(filters, {.settings = site.settings,
                                    .request = request,
                                    .pages = site.files.pages,
                                    .pageData = site.files.pageData.bytes(),
                                    .site = restriction});
  }
  void Prepare() { ASSERT_TRUE(TryPrepare()); }
};

TEST(DateFilter, LastSecondOfTheEndIsKept) {
  const LocalTime utc("UTC0");
  const uint32_t last = kThirdOfFebruary + kLastSecond;
  Filtering f({DatedPage(kThirdOfFebruary - 1), DatedPage(kThirdOfFebruary), DatedPage(last),
               DatedPage(last + 1), DatedPage(0), DatedPage(0xFFFFFFFF)});
  f.site.settings.DateRangeSearch = 1;
  Set(f.request.dateFrom, "3/2/2010");
  Set(f.request.dateTo, "3/2/2010");
  f.Prepare();
  EXPECT_FALSE(PassesDateRange(f.filters, 0));
  EXPECT_TRUE(PassesDateRange(f.filters, 1));
  EXPECT_TRUE(PassesDateRange(f.filters, 2));
  EXPECT_FALSE(PassesDateRange(f.filters, 3));
  EXPECT_FALSE(PassesDateRange(f.filters, 4));
  EXPECT_FALSE(PassesDateRange(f.filters, 5));
}

TEST(DateFilter, InvalidRangeFiltersNothing) {
  Filtering f({DatedPage(0), DatedPage(5)});
  f.site.settings.DateRangeSearch = 1;
  Set(f.request.dateFrom, "0/5/2010");
  Set(f.request.dateTo, "1/6/2010");
  f.Prepare();
  EXPECT_TRUE(PassesDateRange(f.filters, 0));
  EXPECT_TRUE(PassesDateRange(f.filters, 1));
}

TEST(Category, NumberEightIsBitZeroOfTheSecondByte) {
  Filtering f({PageIn("\x00\x01"s), PageIn("\x01\x00"s)});
  f.site.settings.UseCats = 1;
  f.site.settings.NumCatBytes = 2;
  EXPECT_EQ(TestCategory(f.site.files.pages, f.site.settings, 0, 8), CategoryTest::kIn);
  EXPECT_EQ(TestCategory(f.site.files.pages, f.site.settings, 1, 8), CategoryTest::kOut);
}

TEST(Category, MembershipTable) {
  Filtering f({PageIn("\x05\x80"s)});
  f.site.settings.UseCats = 1;
  const struct {
    const char* what;
    int32_t bytes;
    int32_t category;
    CategoryTest expected;
  } cases[] = {
      {"bit 0", 2, 0, CategoryTest::kIn},
      {"bit 1", 2, 1, CategoryTest::kOut},
      {"bit 2", 2, 2, CategoryTest::kIn},
      {"bit 7 of the first byte", 2, 7, CategoryTest::kOut},
      {"bit 7 of the second byte", 2, 15, CategoryTest::kIn},
      {"a third byte that is not there", 2, 16, CategoryTest::kInvalid},
      {"the second byte is not counted", 1, 8, CategoryTest::kInvalid},
      {"the first byte is", 1, 7, CategoryTest::kOut},
      {"no bytes at all", 0, 0, CategoryTest::kInvalid},
      {"a negative number of bytes", -1, 0, CategoryTest::kInvalid},
      {"the largest number", 2, INT32_MAX, CategoryTest::kInvalid},
      {"beyond what the file holds", INT32_MAX, 800, CategoryTest::kOut},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    f.site.settings.NumCatBytes = c.bytes;
    EXPECT_EQ(TestCategory(f.site.files.pages, f.site.settings, 0, c.category), c.expected);
  }
}

// One page in categories 0 and 2 of three.
TEST(CategoryFilter, SelectionsTable) {
  const struct {
    const char* what;
    int32_t useCats;
    std::vector<int32_t> selected;
    CategoryTest expected;
    std::vector<uint32_t> counts;  // empty: not counted
  } cases[] = {
      {"no selection", 1, {}, CategoryTest::kIn, {0, 0, 0}},
      {"all, which are counted later", 1, {-1}, CategoryTest::kIn, {0, 0, 0}},
      {"all and one more", 1, {-1, 1}, CategoryTest::kIn, {0, 0, 0}},
      {"one that holds the page", 1, {2}, CategoryTest::kIn, {}},
      {"one that does not", 1, {1}, CategoryTest::kOut, {}},
      {"two, one of which holds the page", 1, {1, 2}, CategoryTest::kIn, {0, 0, 1}},
      {"two, both of which do", 1, {0, 2}, CategoryTest::kIn, {1, 0, 1}},
      {"one of them twice", 1, {2, 2}, CategoryTest::kIn, {0, 0, 2}},
      {"a number without a bit", 1, {0, 8}, CategoryTest::kInvalid, {1, 0, 0}},
      {"without categories in use", 0, {1}, CategoryTest::kIn, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Filtering f({PageIn("\x05")});
    DefineCategories(f.site.settings, {"a", "b", "c"});
    f.site.settings.UseCats = c.useCats;
    f.site.settings.DisplayCatSummary = 1;
    f.request.categories = c.selected;
    f.Prepare();
    EXPECT_EQ(TestSelectedCategories(f.filters, 0), c.expected);
    EXPECT_EQ(f.filters.countsCategories, !c.counts.empty());
    ASSERT_EQ(f.filters.categoryCounts.size(), c.counts.size());
    for (size_t i = 0; i < c.counts.size(); ++i) {
      EXPECT_EQ(f.filters.categoryCounts[i], c.counts[i]);
    }
  }
}

TEST(CategoryFilter, WithAllSelectedEveryCategoryIsCounted) {
  Filtering f({PageIn("\x05"), PageIn("\x04")});
  DefineCategories(f.site.settings, {"a", "b", "c"});
  f.site.settings.DisplayCatSummary = 1;
  const int32_t all[] = {-1};
  f.request.categories = all;
  f.Prepare();
  EXPECT_TRUE(CountInAllCategories(f.filters, 0));
  EXPECT_TRUE(CountInAllCategories(f.filters, 1));
  EXPECT_EQ(f.filters.categoryCounts[0], 1u);
  EXPECT_EQ(f.filters.categoryCounts[1], 0u);
  EXPECT_EQ(f.filters.categoryCounts[2], 2u);
}

TEST(CategoryFilter, CountingAllTellsOfACategoryWithoutABit) {
  Filtering f({PageIn("\x05")});
  DefineCategories(f.site.settings, std::vector<std::string>(9, "name"));
  f.site.settings.NumCatBytes = 1;
  f.site.settings.DisplayCatSummary = 1;
  f.Prepare();
  EXPECT_FALSE(CountInAllCategories(f.filters, 0));
}

TEST(CategoryFilter, SummaryIsOnlyCountedWhenItIsShown) {
  for (int32_t shown : {0, 2}) {
    Filtering f({PageIn("\x05")});
    DefineCategories(f.site.settings, {"a", "b", "c"});
    f.site.settings.DisplayCatSummary = shown;
    f.Prepare();
    EXPECT_FALSE(f.filters.countsCategories);
    EXPECT_TRUE(CountInAllCategories(f.filters, 0));
  }
}

TEST(SiteFilter, Table) {
  const struct {
    const char* what;
    const char* url;
    const char* restriction;
    bool passes;
  } cases[] = {
      {"inside", "http://a.example/docs/1.html", "docs", true},
      {"in any case", "http://a.example/DOCS/1.html", "dOcs", true},
      {"at the start", "docs/1.html", "docs", true},
      {"not there", "http://a.example/blog", "docs", false},
      {"the whole address", "docs", "docs", true},
      {"longer than the address", "doc", "docs", false},
      {"the empty restriction", "a.html", "", true},
      {"the empty restriction of a page without an address", "", "", true},
      {"a page without an address", "", "docs", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Filtering f({NewPage(c.url)});
    f.restriction = {true, c.restriction};
    f.Prepare();
    EXPECT_EQ(PassesSiteRestriction(f.filters, 0), c.passes);
  }
}

MetaFieldDef Field(int32_t type, int32_t method, int32_t numValues = 0) {
  MetaFieldDef field;
  field.type = type;
  field.method = method;
  field.numValues = numValues;
  return field;
}

TEST(MetaConstraint, NumbersTable) {
  const struct {
    const char* what;
    int32_t type;
    const char* text;
    bool active;
    int32_t number;
  } cases[] = {
      {"empty", kMetaNumeric, "", false, 0},
      {"blanks", kMetaNumeric, " \t ", false, 0},
      {"a number", kMetaNumeric, "42", true, 42},
      {"blanks around", kMetaNumeric, "  42 ", true, 42},
      {"negative", kMetaNumeric, "-7", true, -7},
      {"minus one is a number", kMetaNumeric, "-1", true, -1},
      {"text behind", kMetaNumeric, "12abc", true, 12},
      {"text before", kMetaNumeric, "abc12", false, 0},
      {"a sign alone", kMetaNumeric, "-", false, 0},
      {"saturated", kMetaNumeric, "99999999999", true, INT32_MAX},
      {"saturated below", kMetaNumeric, "-99999999999", true, INT32_MIN},
      {"money empty", kMetaMoney, "", false, 0},
      {"money whole", kMetaMoney, "12", true, 1200},
      {"money with cents", kMetaMoney, "12.34", true, 1234},
      {"money with one place", kMetaMoney, "12.3", true, 1230},
      {"money rounded down", kMetaMoney, "12.344", true, 1234},
      {"money rounded up", kMetaMoney, "12.345", true, 1235},
      {"money rounded up to a whole", kMetaMoney, "0.995", true, 100},
      {"money with a point at the end", kMetaMoney, "12.", true, 1200},
      {"money without digits before the point", kMetaMoney, ".5", true, 50},
      {"money without digits, with a sign", kMetaMoney, "-.25", true, -25},
      {"a point alone is no money", kMetaMoney, ".", false, 0},
      {"a point behind a point is no money", kMetaMoney, "..5", false, 0},
      {"money negative", kMetaMoney, "-1.50", true, -150},
      {"money with a plus sign", kMetaMoney, "+1.50", true, 150},
      {"money with an exponent, which is passed over", kMetaMoney, "1e3", true, 100},
      {"money with blanks around", kMetaMoney, " 2.50 ", true, 250},
      {"money with its currency", kMetaMoney, "$5", false, 0},
      {"money saturated", kMetaMoney, "99999999999999999999", true, INT32_MAX},
      {"money that just fits", kMetaMoney, "21474836.47", true, INT32_MAX},
      {"money, a point alone", kMetaMoney, ".", false, 0},
      {"drop-down not chosen", kMetaDropDown, "", false, 0},
      {"drop-down any", kMetaDropDown, "-1", false, 0},
      {"drop-down", kMetaDropDown, "3", true, 3},
      {"drop-down first", kMetaDropDown, "0", true, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    MetaValue value;
    value.text = c.text;
    const MetaConstraint constraint = ReadMetaConstraint(Field(c.type, 0), value);
    EXPECT_EQ(constraint.active, c.active);
    if (c.active) {
      EXPECT_EQ(constraint.number, c.number);
    }
  }
}

TEST(MetaConstraint, Texts) {
  const struct {
    const char* text;
    bool active;
    const char* expected;
  } cases[] = {{"", false, ""}, {"  ", false, ""}, {" oak ", true, "oak"}, {"-1", true, "-1"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    MetaValue value;
    value.text = c.text;
    const MetaConstraint constraint = ReadMetaConstraint(Field(1, 0), value);
    EXPECT_EQ(constraint.active, c.active);
    if (c.active) {
      EXPECT_EQ(constraint.text, c.expected);
    }
  }
}

// Whether a page with `metaData` passes when the request says `text`.
bool TextPasses(int32_t method, const std::string& page, const std::string& wanted, TextMode mode) {
  const MetaFieldDef field = Field(1, method);
  MetaValue value;
  value.text = wanted;
  MetaData data;
  data.text = page;
  data.hasValue = !page.empty();
  return MeetsConstraint(field, ReadMetaConstraint(field, value), data, mode);
}

TEST(MetaComparison, Texts) {
  const struct {
    const char* what;
    int32_t method;
    const char* page;
    const char* wanted;
    bool passes;
  } cases[] = {
      {"contains", 0, "the red oak", "red", true},
      {"contains, in any case", 0, "the RED oak", "rEd", true},
      {"contains not", 0, "the red oak", "elm", false},
      {"another method contains", 7, "the red oak", "red", true},
      {"a negative method contains", -1, "the red oak", "red", true},
      {"equal", 1, "oak", "oak", true},
      {"equal to a part only", 1, "oaks", "oak", false},
      {"equal but for case, which counts here", 1, "Oak", "oak", false},
      {"begins", 2, "oaks", "oak", true},
      {"begins, in any case", 2, "OAKS", "oak", true},
      {"holds it later", 2, "red oak", "oak", false},
      {"begins with all of it", 2, "oak", "oak", true},
      {"is shorter", 2, "oa", "oak", false},
      {"no value", 0, "", "oak", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(TextPasses(c.method, c.page, c.wanted, TextMode{}), c.passes);
  }
  EXPECT_TRUE(TextPasses(1, "Oak", "oak", TextMode{true, false}));
  EXPECT_TRUE(TextPasses(1, "\xC3\x89t\xC3\xA9", "\xC3\xA9t\xC3\xA9", TextMode{true, true}));
  EXPECT_TRUE(TextPasses(0, "un \xC3\x89t\xC3\xA9", "\xC3\xA9t\xC3\xA9", TextMode{false, true}));
  EXPECT_TRUE(TextPasses(2, "\xC3\x89t\xC3\xA9s", "\xC3\xA9t\xC3\xA9", TextMode{false, true}));
}

TEST(MetaComparison, Numbers) {
  const struct {
    const char* what;
    int32_t method;
    int32_t page;
    int32_t wanted;
    bool passes;
  } cases[] = {
      {"equal", 0, 5, 5, true},
      {"not equal", 0, 5, 6, false},
      {"another method is equality", 3, 5, 5, true},
      {"another method, not equal", 3, 5, 6, false},
      {"at most, less", 1, 4, 5, true},
      {"at most, equal", 1, 5, 5, true},
      {"at most, more", 1, 6, 5, false},
      {"at least, less", 2, 4, 5, false},
      {"at least, equal", 2, 5, 5, true},
      {"at least, more", 2, 6, 5, true},
      {"signed", 1, -2147483647, 2147483647, true},
  };
  for (int32_t type : {kMetaNumeric, kMetaMoney}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(c.what);
      MetaConstraint constraint;
      constraint.active = true;
      constraint.number = c.wanted;
      MetaData data;
      data.hasValue = true;
      data.number = c.page;
      EXPECT_EQ(MeetsConstraint(Field(type, c.method), constraint, data, TextMode{}), c.passes);
      data.hasValue = false;
      EXPECT_FALSE(MeetsConstraint(Field(type, c.method), constraint, data, TextMode{}));
    }
  }
}

TEST(MetaComparison, DropDown) {
  const struct {
    const char* what;
    int32_t page;
    const char* wanted;
    bool passes;
  } cases[] = {
      {"the same", 1, "1", true},
      {"another", 1, "2", false},
      {"both beyond the list", 5, "5", false},
      {"the request beyond the list", 1, "300", false},
  };
  for (int32_t method : {0, 1, 2}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(c.what);
      const MetaFieldDef field = Field(kMetaDropDown, method, 3);
      MetaValue value;
      value.text = c.wanted;
      MetaData data;
      data.hasValue = true;
      data.number = c.page;
      EXPECT_EQ(MeetsConstraint(field, ReadMetaConstraint(field, value), data, TextMode{}),
                c.passes);
    }
  }
}

TEST(MetaComparison, MultipleChoice) {
  const struct {
    const char* what;
    int32_t method;
    std::string page;
    std::vector<uint8_t> wanted;
    bool active;
    bool passes;
  } cases[] = {
      {"one of one", 0, "\x01", {1}, true, true},
      {"at least one", 0, "\x01\x03", {2, 3}, true, true},
      {"none of them", 0, "\x01\x03", {0, 2}, true, false},
      {"all", 1, "\x01\x02\x03", {1, 3}, true, true},
      {"all but one", 1, "\x01\x02", {1, 3}, true, false},
      {"another method is at least one", 2, "\x01", {1, 3}, true, true},
      {"a value named twice", 1, "\x01", {1, 1}, true, true},
      {"a number beyond the list matches nothing", 0, "\x09", {9}, true, false},
      {"a number beyond the list fails all", 1, "\x01\x09", {1, 9}, true, false},
      {"nothing is asked for", 0, "\x01", {}, false, false},
      {"any is asked for", 0, "\x01", {255}, false, false},
      {"any in front", 0, "\x01", {255, 1}, false, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const MetaFieldDef field = Field(kMetaMultiple, c.method, 4);
    MetaValue value;
    value.chosenCount = static_cast<uint8_t>(c.wanted.size());
    for (size_t i = 0; i < c.wanted.size(); ++i) value.chosen[i] = c.wanted[i];
    const MetaConstraint constraint = ReadMetaConstraint(field, value);
    EXPECT_EQ(constraint.active, c.active);
    if (!c.active) continue;
    MetaData data;
    data.hasValue = true;
    data.indexes = c.page;
    EXPECT_EQ(MeetsConstraint(field, constraint, data, TextMode{}), c.passes);
    data.hasValue = false;
    EXPECT_FALSE(MeetsConstraint(field, constraint, data, TextMode{}));
  }
}

TEST(MetaFilter, CountsConstraintsPassed) {
  const std::vector<MetaFieldText> fields = {{"size", kMetaNumeric, "Size", 2},
                                             {"wood", 1, "Wood", 0},
                                             {"color", kMetaDropDown, "Color", 0, {"red", "blue"}},
                                             {"price", kMetaMoney, "Price", 1}};
  const std::string full = LittleEndian(10, 4) + "red oak" + '\0' + '\x01' + LittleEndian(1250, 4);
  const struct {
    const char* what;
    std::string metaData;
    std::vector<const char*> values;
    int32_t passed;
  } cases[] = {
      {"nothing is asked for", full, {"", "", "", ""}, 0},
      {"one field", full, {"", "oak", "", ""}, 1},
      {"every field", full, {"10", "oak", "1", "12.50"}, 4},
      {"the last fails", full, {"10", "oak", "1", "12.49"}, -1},
      {"the first fails", full, {"11", "", "", ""}, -1},
      {"unconstrained by -1", full, {"", "", "-1", "13"}, 1},
      {"data that ends early has no value",
       full.substr(0, full.size() - 1),
       {"", "", "", "99"},
       -1},
      {"and the fields before have theirs",
       full.substr(0, full.size() - 1),
       {"9", "oak", "1", ""},
       3},
      {"no data at all", "", {"", "", "", ""}, 0},
      {"no data but a constraint", "", {"1", "", "", ""}, -1},
      {"fewer values than fields", full, {"10"}, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Filtering f({PageWith(c.metaData), PageWith("rest of the file")});
    DefineMetaFields(f.site.settings, fields);
    std::vector<MetaValue> values(c.values.size());
    for (size_t i = 0; i < values.size(); ++i) values[i].text = c.values[i];
    f.request.metaValues = values;
    f.Prepare();
    EXPECT_EQ(PassedMetaConstraints(f.filters, 0), c.passed);
  }
}

TEST(PrepareFilters, FailedAllocation) {
  Filtering f({PageIn("\x05")});
  DefineCategories(f.site.settings, {"a", "b"});
  f.site.settings.DisplayCatSummary = 1;
  g_failAllocationNumber = 1;
  EXPECT_FALSE(f.TryPrepare());
  g_failAllocationNumber = 0;
}

}  // namespace
}  // namespace vela
