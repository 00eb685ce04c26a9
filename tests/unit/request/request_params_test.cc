// request_params_test.cc: every parameter of a request, and what holds without it.

#include "request/request_params.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/failing_allocation.h"
#include "unit/request/fake_request.h"

namespace vela {
namespace {

using namespace std::string_literals;

class RequestParamsTest : public testing::Test {
 protected:
  void TearDown() override { g_failAllocationNumber = 0; }

  ParamsStatus Read(const FakeRequest& request) {
    params_ = std::make_unique<RequestParams>();
    const ParamsResult result =
        ReadRequestParams(*params_, scriptUrl_, request.source(), settings_);
    decoding_ = result.decoding;
    return result.status;
  }
  ParamsStatus Read(const std::string& queryString) { return Read(FakeRequest(queryString)); }

  std::vector<int32_t> categories() const {
    return {params_->catList.begin(), params_->catList.begin() + params_->catCount};
  }

  // Adds a meta field to the settings.
  void AddMetaField(std::string_view name, int32_t type) {
    settings_.UseMetaFields = 1;
    ++settings_.NumMetaFields;
    ASSERT_TRUE(settings_.metaFields.TryResize(settings_.metaFields.size() + 1));
    MetaFieldDef field;
    Set(field.name, name);
    field.type = type;
    settings_.metaFields[settings_.metaFields.size() - 1] = field;
  }

  Settings settings_;
  FixedText<2048> scriptUrl_;
  std::unique_ptr<RequestParams> params_ = std::make_unique<RequestParams>();
  CgiResult decoding_ = CgiResult::kOk;
};

TEST_F(RequestParamsTest, FieldsHoldTheLongestTexts) {
  static_assert(QueryText::kCapacity == 2085);
  static_assert(decltype(RequestParams::remoteAddr)::kCapacity == 31);
  static_assert(decltype(RequestParams::dateFrom)::kCapacity == 14);
  static_assert(decltype(RequestParams::dateTo)::kCapacity == 16);
  static_assert(kNotGiven == -1001);
}

TEST_F(RequestParamsTest, AnEmptyRequestStoresEveryFallback) {
  ASSERT_EQ(Read(""), ParamsStatus::kOk);
  EXPECT_EQ(params_->xmlMode, -1001);
  EXPECT_EQ(View(params_->remoteAddr), "unknown");
  EXPECT_FALSE(params_->queryGiven);
  EXPECT_EQ(View(params_->query), "");
  EXPECT_EQ(params_->perPage, 10);
  EXPECT_EQ(params_->page, 1);
  EXPECT_TRUE(params_->pageDefaulted);
  EXPECT_EQ(params_->autoComplete, 0);
  EXPECT_EQ(params_->andMode, -1001);
  EXPECT_EQ(params_->sort, 0);
  EXPECT_EQ(View(params_->dateFrom), "");
  EXPECT_EQ(View(params_->dateTo), "");
  EXPECT_EQ(params_->lastTimeFrom, 0);
  EXPECT_EQ(params_->lastTimeTo, 0);
  EXPECT_EQ(params_->masterNode, 0);
  EXPECT_EQ(View(scriptUrl_), "");
  EXPECT_EQ(params_->catCount, 0u);
  EXPECT_TRUE(params_->catList.empty());
  EXPECT_TRUE(params_->metaValues.empty());
}

TEST_F(RequestParamsTest, NumbersAndTheirFallbacks) {
  const struct {
    const char* name;
    int32_t RequestParams::*field;
    int32_t fallback;
  } parameters[] = {
      {"vela_xml", &RequestParams::xmlMode, -1001},
      {"vela_per_page", &RequestParams::perPage, 10},
      {"vela_page", &RequestParams::page, 1},
      {"vela_ac", &RequestParams::autoComplete, 0},
      {"vela_and", &RequestParams::andMode, -1001},
      {"vela_sort", &RequestParams::sort, 2},
      {"vela_ltimefrom", &RequestParams::lastTimeFrom, 0},
      {"vela_ltimeto", &RequestParams::lastTimeTo, 0},
      {"masternode", &RequestParams::masterNode, 0},
  };
  const struct {
    const char* what;
    const char* value;
    bool isNumber;
    int32_t expected;
  } values[] = {
      {"plain", "5", true, 5},
      {"zero", "0", true, 0},
      {"negative", "-1", true, -1},
      {"blanks before, text behind", "++3rd", true, 3},
      {"saturated", "99999999999", true, INT32_MAX},
      {"saturated below", "-99999999999", true, INT32_MIN},
      {"empty", "", false, 0},
      {"blanks", "++", false, 0},
      {"text", "abc", false, 0},
      {"a sign", "-", false, 0},
  };
  settings_.DefaultSort = 2;  // stays in force when the request names no order
  for (const auto& p : parameters) {
    SCOPED_TRACE(p.name);
    for (const auto& v : values) {
      SCOPED_TRACE(v.what);
      ASSERT_EQ(Read(p.name + "="s + v.value + "&z="), ParamsStatus::kOk);
      EXPECT_EQ((*params_).*p.field, v.isNumber ? v.expected : p.fallback);
      for (const auto& other : parameters) {
        if (other.field == p.field) continue;
        EXPECT_EQ((*params_).*other.field, other.fallback) << other.name;
      }
    }
    std::string capitals = p.name;
    capitals[0] = static_cast<char>(capitals[0] - 0x20);
    ASSERT_EQ(Read(capitals + "=5&z="), ParamsStatus::kOk);
    EXPECT_EQ((*params_).*p.field, p.fallback) << "names have their case";
  }
}

TEST_F(RequestParamsTest, APageThatIsNoNumberIsPageOneByDefault) {
  ASSERT_EQ(Read("vela_page=abc&z="), ParamsStatus::kOk);
  EXPECT_EQ(params_->page, 1);
  EXPECT_TRUE(params_->pageDefaulted);
}

TEST_F(RequestParamsTest, PageZeroIsStored) {
  ASSERT_EQ(Read("vela_page=0&z="), ParamsStatus::kOk);
  EXPECT_EQ(params_->page, 0);
  EXPECT_FALSE(params_->pageDefaulted);
}

TEST_F(RequestParamsTest, TheOrderOfTheSettingsStaysUnlessTheRequestNamesOne) {
  settings_.DefaultSort = 1;
  const struct {
    const char* queryString;
    int32_t expected;
  } cases[] = {{"", 1},
               {"vela_sort=abc&z=", 1},
               {"vela_sort=&z=", 1},
               {"vela_sort=0&z=", 0},
               {"vela_sort=2&z=", 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.queryString);
    ASSERT_EQ(Read(c.queryString), ParamsStatus::kOk);
    EXPECT_EQ(params_->sort, c.expected);
  }
}

TEST_F(RequestParamsTest, DatesOfTenCharactersAreKeptLongerOnesDropped) {
  const struct {
    const char* what;
    const char* value;
    std::string_view expected;
  } cases[] = {
      {"ten", "01/12/2024", "01/12/2024"},
      {"eleven", "001/12/2024", ""},
      {"far longer", "01/12/2024 and more", ""},
      {"short", "1/2", "1/2"},
      {"empty", "", ""},
      {"decoded before it is measured", "%30%31%2F12%2F2024", "01/12/2024"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_EQ(Read("vela_datefrom="s + c.value + "&z="), ParamsStatus::kOk);
    EXPECT_EQ(View(params_->dateFrom), c.expected);
    EXPECT_EQ(View(params_->dateTo), "");
    ASSERT_EQ(Read("vela_dateto="s + c.value + "&z="), ParamsStatus::kOk);
    EXPECT_EQ(View(params_->dateTo), c.expected);
    EXPECT_EQ(View(params_->dateFrom), "");
  }
}

// The query.

TEST_F(RequestParamsTest, Queries) {
  const struct {
    const char* what;
    const char* queryString;
    bool given;
    std::string_view expected;
  } cases[] = {
      {"decoded", "vela_query=story+%22time%22&z=", true, "story \"time\""},
      {"empty", "vela_query=&z=", true, ""},
      {"the escaped name", "vela%5Fquery=story&z=", true, "story"},
      {"the escaped name, empty", "vela%5Fquery=&z=", true, ""},
      {"the plain name wins", "vela%5Fquery=escaped&vela_query=plain&z=", true, "plain"},
      {"the plain name wins, though empty", "vela%5Fquery=escaped&vela_query=&z=", true, ""},
      {"the escape in small letters is another name", "vela%5fquery=x&z=", false, ""},
      {"the first of several", "vela_query=a&vela_query=b&z=", true, "a"},
      {"not given", "query=x&z=", false, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_EQ(Read(c.queryString), ParamsStatus::kOk);
    EXPECT_EQ(params_->queryGiven, c.given);
    EXPECT_EQ(View(params_->query), c.expected);
  }
}

TEST_F(RequestParamsTest, AQueryOf3000CharactersIsCutTo2085) {
  for (const char* name : {"vela_query", "vela%5Fquery"}) {
    for (const size_t length : {size_t{2084}, size_t{2085}, size_t{2086}, size_t{3000}}) {
      SCOPED_TRACE(length);
      std::string value(length, 'q');
      value[2083] = 'x';
      if (length > 2084) value[2084] = 'y';
      ASSERT_EQ(Read(name + "="s + value + "&z="), ParamsStatus::kOk);
      EXPECT_EQ(View(params_->query), value.substr(0, 2085));
      EXPECT_TRUE(params_->queryGiven);
    }
  }
}

// The environment.

TEST_F(RequestParamsTest, AnUnsetAddressIsUnknown) {
  ASSERT_EQ(Read(""), ParamsStatus::kOk);
  EXPECT_EQ(View(params_->remoteAddr), "unknown");
}

TEST_F(RequestParamsTest, AddressesAreCutTo31Characters) {
  const struct {
    const char* what;
    std::string address;
    std::string expected;
  } cases[] = {
      {"plain", "192.0.2.1", "192.0.2.1"},
      {"one below full", std::string(30, 'a'), std::string(30, 'a')},
      {"full", std::string(31, 'a'), std::string(31, 'a')},
      {"one over", std::string(32, 'a'), std::string(31, 'a')},
      {"far over", std::string(5000, 'a'), std::string(31, 'a')},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    FakeRequest request("");
    request.Set("REMOTE_ADDR", c.address);
    ASSERT_EQ(Read(request), ParamsStatus::kOk);
    EXPECT_EQ(View(params_->remoteAddr), c.expected);
  }
}

TEST_F(RequestParamsTest, AScriptNameIsKeptWhenItFits) {
  for (const size_t length : {size_t{9}, size_t{2046}, size_t{2047}}) {
    SCOPED_TRACE(length);
    FakeRequest request("");
    request.Set("SCRIPT_NAME", std::string(length, '/'));
    Clear(scriptUrl_);
    ASSERT_EQ(Read(request), ParamsStatus::kOk);
    EXPECT_EQ(View(scriptUrl_), std::string(length, '/'));
  }
  for (const size_t length : {size_t{2048}, size_t{9000}}) {
    SCOPED_TRACE(length);
    FakeRequest request("");
    request.Set("SCRIPT_NAME", std::string(length, '/'));
    Clear(scriptUrl_);
    ASSERT_EQ(Read(request), ParamsStatus::kOk);
    EXPECT_EQ(View(scriptUrl_), "");
  }
}

// Categories.

TEST_F(RequestParamsTest, WithoutACategoryParameterAllAreChosen) {
  settings_.UseCats = 1;
  settings_.NumCats = 5;
  ASSERT_EQ(Read("vela_query=x&z="), ParamsStatus::kOk);
  EXPECT_EQ(categories(), std::vector<int32_t>{-1});
  EXPECT_EQ(params_->catCount, 1u);
}

TEST_F(RequestParamsTest, CategoriesAboveTheirNumberAreLeftOut) {
  settings_.UseCats = 1;
  settings_.NumCats = 5;
  ASSERT_EQ(Read("vela_cat[]=2&vela_cat[]=9&vela_cat[]=3"), ParamsStatus::kOk);
  EXPECT_EQ(categories(), (std::vector<int32_t>{2, 3}));
}

TEST_F(RequestParamsTest, AFirstCategoryAboveTheirNumberFailsTheList) {
  settings_.UseCats = 1;
  settings_.NumCats = 5;
  ASSERT_EQ(Read("vela_cat%5B%5D=9&vela_cat%5B%5D=1&vela_cat[]=3&vela_cat=4"), ParamsStatus::kOk);
  EXPECT_EQ(categories(), std::vector<int32_t>{3});
  ASSERT_EQ(Read("vela_cat%5B%5D=9&vela_cat[]=9&vela_cat[]=1&vela_cat=4"), ParamsStatus::kOk);
  EXPECT_EQ(categories(), std::vector<int32_t>{4});
}

TEST_F(RequestParamsTest, Categories) {
  const struct {
    const char* what;
    int32_t numCats;
    const char* queryString;
    std::vector<int32_t> expected;
  } cases[] = {
      {"the escaped name", 5, "vela_cat%5B%5D=1&vela_cat%5B%5D=2&z=", {1, 2}},
      {"the escaped name first", 5, "vela_cat=4&vela_cat[]=3&vela_cat%5B%5D=2&z=", {2}},
      {"the name with brackets second", 5, "vela_cat=4&vela_cat[]=3&z=", {3}},
      {"the plain name last", 5, "vela_cat=4&z=", {4}},
      {"the plain name is one number", 5, "vela_cat=4&vela_cat=2&z=", {4}},
      {"the plain name has no maximum", 5, "vela_cat=77&z=", {77}},
      {"the plain name with text", 5, "vela_cat=all&z=", {-1}},
      {"the plain name empty", 5, "vela_cat=&z=", {-1}},
      {"the number of categories passes", 5, "vela_cat[]=5&z=", {5}},
      {"-1 in a list", 5, "vela_cat[]=-1&z=", {-1}},
      {"no more than there are categories", 2, "vela_cat[]=0&vela_cat[]=1&vela_cat[]=2&z=", {0, 1}},
      {"text in a list reads as 0", 5, "vela_cat[]=x&z=", {0}},
      {"an empty first value fails the list", 5, "vela_cat[]=&vela_cat[]=2&vela_cat=3&z=", {3}},
      {"no categories at all", 0, "vela_query=x&z=", {-1}},
      {"no categories, one asked for", 0, "vela_cat=3&z=", {3}},
      {"a negative number of categories", -5, "vela_cat[]=1&vela_cat=2&z=", {2}},
      {"an absurd number of categories",
       INT32_MAX,
       "vela_cat[]=7&vela_cat[]=2147483647&z=",
       {7, INT32_MAX}},
  };
  settings_.UseCats = 1;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    settings_.NumCats = c.numCats;
    ASSERT_EQ(Read(c.queryString), ParamsStatus::kOk);
    EXPECT_EQ(categories(), c.expected);
  }
}

TEST_F(RequestParamsTest, CategoriesAreReadOnlyWhenUsed) {
  settings_.UseCats = 0;
  settings_.NumCats = 5;
  ASSERT_EQ(Read("vela_cat=2&z="), ParamsStatus::kOk);
  EXPECT_EQ(params_->catCount, 0u);
  EXPECT_TRUE(params_->catList.empty());
}

// Meta fields.

TEST_F(RequestParamsTest, TextsOfMetaFields) {
  AddMetaField("author", 1);
  AddMetaField("year", 0);
  AddMetaField("size", 2);
  AddMetaField("price", 4);
  ASSERT_EQ(Read("price=9.50&author=A.+Smith&size=3&author=B&Year=1&z="), ParamsStatus::kOk);
  ASSERT_EQ(params_->metaValues.size(), 4u);
  EXPECT_EQ(params_->metaValues[0].text, "A. Smith");
  EXPECT_EQ(params_->metaValues[1].text, "");
  EXPECT_EQ(params_->metaValues[2].text, "3");
  EXPECT_EQ(params_->metaValues[3].text, "9.50");
}

TEST_F(RequestParamsTest, ATextLongerThan65535IsDropped) {
  AddMetaField("author", 1);
  for (const size_t length : {size_t{65534}, size_t{65535}}) {
    ASSERT_EQ(Read("author=" + std::string(length, 'a') + "&z="), ParamsStatus::kOk);
    EXPECT_EQ(params_->metaValues[0].text, std::string(length, 'a'));
  }
  ASSERT_EQ(Read("author=" + std::string(65536, 'a') + "&z="), ParamsStatus::kOk);
  EXPECT_EQ(params_->metaValues[0].text, "");
}

TEST_F(RequestParamsTest, MultipleChoices) {
  // 250 values, 0 to 249, and ten more.
  std::string many;
  for (int i = 0; i < 260; ++i) many += "tags[]=" + std::to_string(i % 250) + "&";
  const struct {
    const char* what;
    std::string queryString;
    int count;
    std::vector<int> stored;
  } cases[] = {
      {"the escaped name", "tags%5B%5D=1&tags%5B%5D=2&z=", 2, {1, 2}},
      {"the escaped name first", "tags=4&tags[]=3&tags%5B%5D=2&z=", 1, {2}},
      {"the name with brackets", "tags=4&tags[]=3&tags[]=1&z=", 2, {3, 1}},
      {"the plain name", "tags=4&z=", 1, {4}},
      {"the plain name is one number", "tags=4&tags=5&z=", 1, {4}},
      {"not given", "z=", 1, {255}},
      {"no number", "tags=x&z=", 1, {255}},
      {"-1 is stored as 255", "tags[]=-1&z=", 1, {255}},
      {"-300 is stored modulo 256", "tags[]=-300&z=", 1, {212}},
      {"255 is counted and left out", "tags[]=255&z=", 1, {}},
      {"255 between others", "tags[]=1&tags[]=255&tags[]=2&z=", 3, {1, 2}},
      {"above 255 is neither", "tags[]=1&tags[]=256&tags[]=2&z=", 2, {1, 2}},
      {"a first one above 255 fails the list", "tags[]=256&tags[]=1&tags=7&z=", 1, {7}},
      {"the plain name above 255 is left out", "tags=300&z=", 1, {}},
      {"254 is the greatest stored", "tags[]=254&z=", 1, {254}},
  };
  AddMetaField("tags", 3);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ASSERT_EQ(Read(c.queryString), ParamsStatus::kOk);
    const MetaValue& value = params_->metaValues[0];
    EXPECT_EQ(value.chosenCount, c.count);
    for (size_t i = 0; i < 255; ++i) {
      EXPECT_EQ(value.chosen[i], i < c.stored.size() ? c.stored[i] : 0) << i;
    }
  }
  ASSERT_EQ(Read(many), ParamsStatus::kOk);
  EXPECT_EQ(params_->metaValues[0].chosenCount, 255);
  EXPECT_EQ(params_->metaValues[0].chosen[249], 249);
  EXPECT_EQ(params_->metaValues[0].chosen[250], 0);
  EXPECT_EQ(params_->metaValues[0].chosen[254], 4);
}

TEST_F(RequestParamsTest, AMetaFieldOfTheLongestName) {
  const std::string name(103, 'n');
  AddMetaField(name, 3);
  ASSERT_EQ(Read(name + "%5B%5D=6&z="), ParamsStatus::kOk);
  EXPECT_EQ(params_->metaValues[0].chosen[0], 6);
}

TEST_F(RequestParamsTest, MetaFieldsAreReadOnlyWhenUsed) {
  AddMetaField("author", 1);
  settings_.UseMetaFields = 0;
  ASSERT_EQ(Read("author=x&z="), ParamsStatus::kOk);
  EXPECT_TRUE(params_->metaValues.empty());
}

// Failures.

TEST_F(RequestParamsTest, AnUndecodableRequestSaysWhy) {
  const struct {
    const char* what;
    const char* method;
    const char* contentType;
    const char* contentLength;
    CgiResult expected;
  } cases[] = {
      {"no method", "", "", "", CgiResult::kMethod},
      {"content type", "POST", "text/plain", "5", CgiResult::kContentType},
      {"length", "POST", "application/x-www-form-urlencoded", "-5", CgiResult::kInput},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    FakeRequest request;
    request.Set("REQUEST_METHOD", c.method);
    request.Set("CONTENT_TYPE", c.contentType);
    request.Set("CONTENT_LENGTH", c.contentLength);
    EXPECT_EQ(Read(request), ParamsStatus::kUndecodable);
    EXPECT_EQ(decoding_, c.expected);
  }
}

TEST_F(RequestParamsTest, EveryFailedAllocationIsAnswered) {
  settings_.UseCats = 1;
  settings_.NumCats = 3;
  AddMetaField("author", 1);
  AddMetaField("tags", 3);
  const FakeRequest request("vela_query=x&vela_cat[]=1&author=y&tags[]=2&z=");
  int32_t undecodable = 0;
  int32_t noMemory = 0;
  for (int32_t failing = 1;; ++failing) {
    SCOPED_TRACE(failing);
    ASSERT_LT(failing, 100);
    g_failAllocationNumber = failing;
    const ParamsStatus status = Read(request);
    if (g_failAllocationNumber > 0) {
      EXPECT_EQ(status, ParamsStatus::kOk);
      break;
    }
    ASSERT_NE(status, ParamsStatus::kOk);
    if (status == ParamsStatus::kUndecodable) {
      ++undecodable;
      EXPECT_EQ(decoding_, CgiResult::kNoMemory);
    } else {
      ++noMemory;
      EXPECT_EQ(decoding_, CgiResult::kOk);
    }
  }
  EXPECT_GE(undecodable, 1);  // the form
  EXPECT_GE(noMemory, 2);     // the categories and the meta values
}

TEST_F(RequestParamsTest, ReleasingTwiceIsHarmless) {
  settings_.UseCats = 1;
  settings_.NumCats = 3;
  AddMetaField("author", 1);
  ASSERT_EQ(Read("vela_cat=1&author=x&z="), ParamsStatus::kOk);
  for (int i = 0; i < 2; ++i) {
    ReleaseRequestData(*params_);
    EXPECT_TRUE(params_->catList.empty());
    EXPECT_EQ(params_->catCount, 0u);
    EXPECT_TRUE(params_->metaValues.empty());
    EXPECT_EQ(params_->form.pairCount, 0);
    EXPECT_TRUE(params_->form.rawData.empty());
  }
}

}  // namespace
}  // namespace vela
