#include "indexer/collect/page_collection.h"

#include <gtest/gtest.h>

#include "format/page_data.h"
#include "settings/settings.h"
#include "support/scratch_directory.h"

namespace vela::indexer {
namespace {

struct Site {
  support::ScratchDirectory scratch;
  std::string base = "/";
  SiteConfig config;
  IndexCharset charset;

  PageCollection Collection() const {
    return {{.base = base, .config = config, .charset = charset, .memory = 1 << 20},
            scratch.path()};
  }
};

Page PageAt(const std::string& address, const std::string& text) {
  Page page;
  page.content.body = {{text, 0}};
  page.facts.path = address.substr(1);
  page.facts.address = address;
  page.facts.title = "Title";
  page.facts.fileSize = 10;
  return page;
}

TEST(PageCollection, PagesJoinOneBehindTheOther) {
  Site site;
  PageCollection collection = site.Collection();
  JoinedPage joined;
  ASSERT_EQ(AddPage(PageAt("/a.html", "one two"), collection, joined), Reason::kNone);
  const size_t tokens = collection.tokens.tokens.size();
  EXPECT_EQ(joined.entry.address, "/a.html");
  EXPECT_EQ(joined.addresses, std::vector<std::string>{"/a.html"});
  ASSERT_EQ(AddPage(PageAt("/b.html", "three"), collection, joined), Reason::kNone);
  ASSERT_EQ(collection.pages.size(), 2u);
  EXPECT_EQ(collection.pages[0].firstToken, 0u);
  EXPECT_EQ(collection.pages[0].bodyWords, 2u);
  EXPECT_EQ(collection.pages[1].firstToken, tokens);
  EXPECT_EQ(collection.tokenCount, tokens + collection.tokens.tokens.size());
  EXPECT_EQ(collection.sourceBytes, 20u);
}

TEST(PageCollection, APageThatIsLeftOutLeavesNothing) {
  Site site;
  PageCollection collection = site.Collection();
  collection.addresses.AddItem("/a.html");
  JoinedPage joined;
  Page copy = PageAt("/b.html", "copy");
  copy.facts.canonical = "/a.html";
  EXPECT_EQ(AddPage(copy, collection, joined), Reason::kCopy);
  EXPECT_EQ(AddPage(PageAt("/" + std::string(kAddressLimit, 'x'), "far"), collection, joined),
            Reason::kAddressTooLong);
  EXPECT_TRUE(collection.pages.empty());
  EXPECT_TRUE(collection.vocabulary.words.empty());
  EXPECT_EQ(collection.sourceBytes, 0u);
}

TEST(PageCollection, ThePageIsKnownByBothItsAddresses) {
  Site site;
  PageCollection collection = site.Collection();
  collection.addresses.AddItem("/b.html");
  Page page = PageAt("/b.html", "text");
  page.facts.canonical = "/pretty?x=1&y=2";
  page.facts.image = "/" + std::string(kAddressLimit, 'x');
  JoinedPage joined;
  ASSERT_EQ(AddPage(page, collection, joined), Reason::kNone);
  EXPECT_EQ(joined.entry.address, "/pretty?x=1&amp;y=2");
  EXPECT_EQ(joined.addresses, (std::vector<std::string>{"/pretty?x=1&y=2", "/b.html"}));
  EXPECT_EQ(joined.entry.image, "");  // too long to be linked
}

TEST(PageCollection, CountsTheValuesThatDoNotFitTheirField) {
  Site site;
  FieldRule price;
  price.name = price.meta = "price";
  price.kind = kMetaMoney;
  site.config.fields = {price};
  PageCollection collection = site.Collection();
  JoinedPage joined;
  Page page = PageAt("/a.html", "text");
  page.content.metas = {{"price", "cheap"}};
  ASSERT_EQ(AddPage(page, collection, joined), Reason::kNone);
  page.facts.address = "/b.html";
  page.content.metas = {{"price", std::string(61, 'x')}};
  ASSERT_EQ(AddPage(page, collection, joined), Reason::kNone);
  const LeftOut::Group& group = collection.metaValues.groups.at({"price", Reason::kNoAmount});
  EXPECT_EQ(group.examples, (std::vector<std::string>{"a.html (\"cheap\")", "a.html (\"...\")"}));
}

TEST(PageCollection, NamesFieldsThatNoPageHas) {
  Site site;
  for (const char* name : {"Used", "unused"}) {
    FieldRule rule;
    rule.name = rule.meta = name;
    site.config.fields.push_back(rule);
  }
  PageCollection collection = site.Collection();
  JoinedPage joined;
  Page page = PageAt("/a.html", "text");
  page.content.metas = {{"used", "x"}};
  ASSERT_EQ(AddPage(page, collection, joined), Reason::kNone);
  const std::vector<Finding> unused = UnusedFields(collection);
  ASSERT_EQ(unused.size(), 1u);
  EXPECT_EQ(unused[0].subject, "unused");
}

}  // namespace
}  // namespace vela::indexer
