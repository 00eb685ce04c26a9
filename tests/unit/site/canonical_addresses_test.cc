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

}  // namespace
}  // namespace vela::indexer
