#include "indexer/site/canonical_addresses.h"

#include <gtest/gtest.h>

#include <vector>

namespace vela::indexer {
namespace {

struct NamedPage {
  const char* own;
  const char* canonical;
  Reason reason;
  const char* address;  // of a page that is not left out
};

void ExpectChoices(const std::vector<NamedPage>& pages) {
  CanonicalAddresses addresses("https://x.example/");
  for (const NamedPage& page : pages) addresses.AddItem(page.own);
  for (const NamedPage& page : pages) {
    SCOPED_TRACE(page.own);
    std::string address;
    EXPECT_EQ(addresses.Choose(page.own, page.canonical, address), page.reason);
    if (page.reason == Reason::kNone) {
      EXPECT_EQ(address, page.address);
    }
  }
}

TEST(CanonicalAddresses, AnAddressThatNoItemHasIsTakenOnce) {
  ExpectChoices({
      {"https://x.example/a", "", Reason::kNone, "https://x.example/a"},
      {"https://x.example/b", "https://x.example/b", Reason::kNone, "https://x.example/b"},
      {"https://x.example/c", "https://x.example/pretty", Reason::kNone,
       "https://x.example/pretty"},
      {"https://x.example/d", "https://x.example/pretty", Reason::kCopy, ""},
      {"https://x.example/e", "https://elsewhere.example/e", Reason::kNone, "https://x.example/e"},
  });
}

TEST(CanonicalAddresses, TheHostIsSpelledAsInTheBase) {
  ExpectChoices({
      {"https://x.example/a", "http://X.Example/a", Reason::kNone, "https://x.example/a"},
      {"https://x.example/b", "http://x.example/a", Reason::kCopy, ""},
      {"https://x.example/c", "http://x.example/C", Reason::kNone, "https://x.example/C"},
  });
}

TEST(CanonicalAddresses, OneOfPagesThatNameEachOtherStays) {
  ExpectChoices({
      {"https://x.example/a", "https://x.example/b", Reason::kCopy, ""},
      {"https://x.example/b", "https://x.example/c", Reason::kCopy, ""},
      {"https://x.example/c", "https://x.example/a", Reason::kNone, "https://x.example/c"},
      {"https://x.example/d", "https://x.example/a", Reason::kCopy, ""},
  });
}

TEST(CanonicalAddresses, AFolderIsItsIndexPage) {
  ExpectChoices({
      {"https://x.example/a", "https://x.example/c/", Reason::kCopy, ""},
      {"https://x.example/c/index.html", "https://x.example/c/", Reason::kNone,
       "https://x.example/c/"},
      {"https://x.example/d", "https://x.example/c/", Reason::kCopy, ""},
      {"https://x.example/e/index.html", "https://x.example/f", Reason::kCopy, ""},
      {"https://x.example/f", "https://x.example/e/", Reason::kNone, "https://x.example/f"},
      {"https://x.example/g", "https://x.example/g/", Reason::kNone, "https://x.example/g/"},
      {"https://x.example/h/index.de.html", "https://x.example/h/index.de.html", Reason::kNone,
       "https://x.example/h/index.de.html"},
      {"https://x.example/h/index.en.html", "https://x.example/h/", Reason::kNone,
       "https://x.example/h/"},
  });
}

TEST(CanonicalAddresses, APageStandsForThoseLeftOutForIt) {
  CanonicalAddresses addresses("https://x.example/");
  const std::string kCopy = "https://x.example/a";
  const std::string kNextCopy = "https://x.example/b";
  const std::string kOwn = "https://x.example/c/index.html";
  const std::string kPretty = "https://x.example/pretty";
  for (const std::string& item : {kCopy, kNextCopy, kOwn}) addresses.AddItem(item);
  std::string address;
  ASSERT_EQ(addresses.Choose(kCopy, kNextCopy, address), Reason::kCopy);
  ASSERT_EQ(addresses.Choose(kNextCopy, "https://x.example/c/", address), Reason::kCopy);
  ASSERT_EQ(addresses.Choose(kOwn, kPretty, address), Reason::kNone);
  EXPECT_EQ(addresses.PageAt(kCopy), std::nullopt);  // not yet
  for (const std::string& each : {kOwn, kPretty}) addresses.Note(each, 7);
  for (const std::string& each :
       {kCopy, kNextCopy, kOwn, kPretty, std::string("https://x.example/c/")}) {
    EXPECT_EQ(addresses.PageAt(each), 7u) << each;
  }
  EXPECT_EQ(addresses.PageAt("https://x.example/gone"), std::nullopt);
}

TEST(CanonicalAddresses, TheFirstIndexPageThatIsAPageStandsForTheFolder) {
  CanonicalAddresses addresses("/");
  for (const char* item : {"/c/index.htm", "/c/index.html", "/c/index.txt"}) {
    addresses.AddItem(item);
  }
  addresses.Note("/c/index.html", 1);  // the one before it holds no text
  addresses.Note("/c/index.txt", 2);
  EXPECT_EQ(addresses.PageAt("/c/"), 1u);
  addresses.Note("/c/", 3);  // of a page that has this for its own address
  EXPECT_EQ(addresses.PageAt("/c/"), 3u);
}

}  // namespace
}  // namespace vela::indexer
