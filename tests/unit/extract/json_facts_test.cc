#include "indexer/extract/json_facts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vela::indexer {
namespace {

std::vector<MetaElement> Facts(const std::string& json) {
  ReadingBudget budget;
  PageContent page;
  AddJsonFacts(json, budget, page);
  return page.metas;
}

TEST(JsonFacts, WhatAPageSaysOfItself) {
  const struct {
    const char* what;
    std::string json;
    std::vector<MetaElement> expected;
  } kCases[] = {
      {"members of an object",
       R"({"@type":"Article","headline":" A  b ","wordCount":12,"price":4.50,"free":true,"x":null})",
       {{"json-ld:type", "Article"},
        {"json-ld:headline", "A b"},
        {"json-ld:wordcount", "12"},
        {"json-ld:price", "4.50"},
        {"json-ld:free", "true"}}},
      {"the type may come last, and be several",
       R"({"headline":"A","@type":["Thing","BlogPosting"]})",
       {{"json-ld:headline", "A"}, {"json-ld:type", "Thing"}, {"json-ld:type", "BlogPosting"}}},
      {"an object is called by its name",
       R"({"author":{"@type":"Person","url":"/ann","name":"Ann"}})",
       {{"json-ld:author.url", "/ann"}, {"json-ld:author.name", "Ann"}, {"json-ld:author", "Ann"}}},
      {"a picture by its address",
       R"({"image":{"name":"Sea","url":"/s.png"}})",
       {{"json-ld:image.name", "Sea"},
        {"json-ld:image.url", "/s.png"},
        {"json-ld:image", "/s.png"}}},
      {"a value by itself",
       R"({"name":{"@value":"Buch","@language":"de"}})",
       {{"json-ld:name", "Buch"}}},
      {"each entry of a list",
       R"({"author":[{"name":"Ann"},"Bob"],"keywords":["a","b"]})",
       {{"json-ld:author.name", "Ann"},
        {"json-ld:author", "Ann"},
        {"json-ld:author", "Bob"},
        {"json-ld:keywords", "a"},
        {"json-ld:keywords", "b"}}},
      {"the site, its owner and the way to the page are not the page",
       R"([{"@type":"WebSite","name":"S"},{"@type":"Organization","name":"O"},)"
       R"({"@type":"BreadcrumbList","name":"B"},{"@type":"schema:Person","name":"P"},)"
       R"({"@type":"http://schema.org/Product","name":"N"}])",
       {{"json-ld:type", "http://schema.org/Product"}, {"json-ld:name", "N"}}},
      {"a graph, of a site even",
       R"({"@type":"WebSite","name":"S","@graph":[{"@type":"Person","name":"P"},{"schema:name":"A"}]})",
       {{"json-ld:name", "A"}}},
      {"what the page is about before the page",
       R"({"@type":"WebPage","name":"W","mainEntity":{"@type":"Recipe","name":"R"}})",
       {{"json-ld:type", "Recipe"},
        {"json-ld:name", "R"},
        {"json-ld:type", "WebPage"},
        {"json-ld:name", "W"}}},
      {"a graph inside of a value is none",
       R"({"a":{"@graph":[{"b":"c"}],"mainEntity":{"d":"e"}}})",
       {{"json-ld:a.mainentity.d", "e"}}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Facts(c.json), c.expected);
  }
}

TEST(JsonFacts, WhatIsWrongWithIt) {
  const std::vector<MetaElement> a = {{"json-ld:a", "b"}};
  const struct {
    const char* what;
    std::string json;
    std::vector<MetaElement> expected;
  } kCases[] = {
      {"nothing", "", {}},
      {"a text alone", "\"a\"", {}},
      {"a list of texts", R"(["a",["b"]])", {}},
      {"a wrapping", "\n//<![CDATA[\n{\"a\":\"b\"}\n//]]>\n", a},
      {"a line end in a text", "{\"a\":\"b\n c\"}", {{"json-ld:a", "b c"}}},
      {"what stands behind a fault", R"({"a":"b",,"c":"d"})", a},
      {"a comma behind the last", R"({"a":"b",})", a},
      {"no end", R"([{"a":"b","c":{"d")", a},
      {"behind the end", R"({"a":"b"} {"c":"d"})", a},
      {"a number beyond all", R"({"a":"b","c":1e999})", a},
      {"no UTF-8", "{\"a\":\"b\",\"c\":\"\xFF\"}", a},
      {"no name", R"({"":"x","/":"y","a":"b"})", a},
      {"a long name", "{\"" + std::string(101, 'n') + "\":\"x\",\"a\":\"b\"}", a},
      {"a long name above", "{\"" + std::string(101, 'n') + "\":{\"c\":[\"d\"]},\"a\":\"b\"}", a},
      {"a long value", "{\"c\":\"" + std::string(2001, 'x') + "\",\"a\":\"b\"}", a},
      {"blanks alone", R"({"c":"  ","a":"b"})", a},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Facts(c.json), c.expected);
  }
}

TEST(JsonFacts, StopsAtItsLimits) {
  std::string deep = R"({"a":"b","c":)";
  for (int i = 0; i < 100000; ++i) deep += '[';
  EXPECT_EQ(Facts(deep + "]"), (std::vector<MetaElement>{{"json-ld:a", "b"}}));

  // The object itself is the first of 16 levels.
  std::string inner;
  for (int i = 0; i < 15; ++i) inner += R"({"l":)";
  EXPECT_EQ(Facts(inner + R"({"a":"b"})" + std::string(15, '}')).size(), 1u);
  EXPECT_EQ(Facts(R"({"l":)" + inner + R"({"a":"b"})" + std::string(16, '}')).size(), 0u);

  std::string many = "[";
  for (int i = 0; i < 150; ++i) many += R"({"a":"b"},)";
  EXPECT_EQ(Facts(many + "{}]").size(), 100u);
  std::string list = R"({"k":[)";
  for (int i = 0; i < 150; ++i) list += R"("b",)";
  EXPECT_EQ(Facts(list + R"("c"]})").size(), 100u);

  ReadingBudget budget;
  budget.bytesLimit = 5;
  PageContent page;
  AddJsonFacts(R"({"a":"b"})", budget, page);
  EXPECT_TRUE(page.metas.empty());
  EXPECT_EQ(budget.status, Reason::kMarkupTooLarge);
}

}  // namespace
}  // namespace vela::indexer
