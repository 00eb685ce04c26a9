#include "indexer/extract/microdata.h"

#include <gtest/gtest.h>

#include "indexer/extract/html_page.h"

namespace vela::indexer {
namespace {

std::vector<MetaElement> Facts(const std::string& html) {
  ReadingBudget budget;
  PageContent page;
  EXPECT_EQ(ParseHtmlPage(html, budget, page), Reason::kNone);
  return page.metas;
}

TEST(Microdata, PropertiesOfItemsThatTellOfThePage) {
  const struct {
    const char* what;
    std::string html;
    std::vector<MetaElement> expected;
  } kCases[] = {
      {"texts and addresses",
       "<div itemscope itemtype=https://schema.org/Recipe><h1 itemprop=name> Fish <b>soup</b></h1>"
       "<img itemprop=image src=/f.png><link itemprop=license href=/l><p itemprop='description x'>"
       "Warm</p><span itemprop=price content=4.50>four</span>"
       "<a itemprop=author href=/ann>Ann</a><a itemprop=url href=/u>here</a></div>",
       {{"itemprop:type", "recipe"},
        {"itemprop:name", "Fish soup"},
        {"itemprop:image", "/f.png"},
        {"itemprop:license", "/l"},
        {"itemprop:description", "Warm"},
        {"itemprop:price", "4.50"},
        {"itemprop:author", "Ann"},
        {"itemprop:url", "/u"}}},
      {"an item that is a property",
       "<div itemscope><p itemprop=Author itemscope itemtype=http://schema.org/Person>"
       "<i itemprop=name>Ann</i><a itemprop=url href=/ann>x</a></p><p itemprop=publisher itemscope>"
       "<a itemprop=url href=/p>P</a></p>text</div>",
       {{"itemprop:author.name", "Ann"},
        {"itemprop:author.url", "/ann"},
        {"itemprop:author", "Ann"},
        {"itemprop:publisher.url", "/p"},
        {"itemprop:publisher", "/p"}}},
      {"the owner of the site is not the page",
       "<div itemscope itemtype=http://schema.org/Organization><i itemprop=name>O</i>"
       "<div itemprop=address itemscope><i itemprop=street>S</i></div></div>"
       "<div itemscope><i itemprop=name>N</i></div>",
       {{"itemprop:name", "N"}}},
      {"an item inside that is no property",
       "<div itemscope><div itemscope itemtype=Event><i itemprop=name>E</i></div>"
       "<i itemprop=name>N</i></div>",
       {{"itemprop:type", "event"}, {"itemprop:name", "E"}, {"itemprop:name", "N"}}},
      {"the text of two",
       "<div itemscope><p itemprop=a>x <b itemprop=b>y</b> z</p></div>",
       {{"itemprop:b", "y"}, {"itemprop:a", "x y z"}}},
      {"of no item", "<p itemprop=a>x</p><img itemprop=b src=c>", {}},
      {"without an end", "<div itemscope><p itemprop=a>x<p>y", {{"itemprop:a", "x"}}},
      {"without a name", "<div itemscope><p itemprop=' '>x</p><p itemprop>y</p></div>", {}},
      {"in a template", "<template><div itemscope><p itemprop=a>x</p></div></template>y", {}},
      {"hidden", "<div itemscope><p itemprop=a hidden>x</p></div>y", {}},
      {"a long one",
       "<div itemscope><p itemprop=a>" + std::string(2001, 'x') + "</p><p itemprop=b>" +
           std::string(2000, 'y') + "</p></div>",
       {{"itemprop:b", std::string(2000, 'y')}}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Facts(c.html), c.expected);
  }
}

TEST(Microdata, SixteenMayBeOpen) {
  std::string html;
  for (int i = 0; i < 15; ++i) html += "<div itemscope itemprop=a>";
  EXPECT_EQ(Facts(html + "<i itemprop=b>x</i>").size(), 1u);
  EXPECT_EQ(Facts(html + "<div itemscope><i itemprop=b>x</i>").size(), 0u);
}

}  // namespace
}  // namespace vela::indexer
