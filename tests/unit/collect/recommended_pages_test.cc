#include "indexer/collect/recommended_pages.h"

#include <gtest/gtest.h>

#include "format/page_data.h"

namespace vela::indexer {
namespace {

TEST(RecommendedPages, AreFoundByTheAddressesOfRules) {
  CanonicalAddresses addresses("https://x.example/");
  addresses.Note("https://x.example/h.html", 0);
  addresses.Note("https://x.example/c/index.html", 1);
  addresses.Note("https://x.example/notes/Preis%20liste.txt", 2);
  addresses.Note("https://x.example/%C3%9Cber.html", 3);
  const std::string longest(kAddressLimit - sizeof "https://y.example/" + 1, 'a');
  const struct {
    std::string address;
    const char* title;
    std::optional<uint32_t> page;
    std::string link;
  } kCases[] = {
      {"h.html", "", 0, ""},
      {"/h.html", "Title", 0, ""},
      {"http://X.example/h.html", "", 0, ""},
      {"https://x.example/c/", "", 1, ""},
      {"c/index.html", "", 1, ""},
      {"notes/Preis liste.txt", "", 2, ""},
      {"https://x.example/\u00DCber.html#top", "", 3, ""},
      {"%c3%9cber.html", "", 3, ""},
      {"gone.html", "", std::nullopt, ""},
      {"list.pdf", "Price list", std::nullopt, "https://x.example/list.pdf"},
      {"https://y.example/h.html", "", std::nullopt, "https://y.example/h.html"},
      {"https://y.example/a\"b?c=1&d=2#e", "T", std::nullopt,
       "https://y.example/a%22b?c=1&amp;d=2#e"},
      {"https://y.example/" + longest, "", std::nullopt, "https://y.example/" + longest},
      {"https://y.example/a" + longest, "", std::nullopt, ""},
      {"mailto:h@x.example", "Title", std::nullopt, ""},
      {"javascript:alert(1)", "Title", std::nullopt, ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.address);
    const RecommendedRule rule = {"word", c.address, "line 1", c.title};
    const Recommendation found = FindRecommended(rule, addresses, "https://x.example/");
    EXPECT_EQ(found.page, c.page);
    EXPECT_EQ(found.link, c.link);
  }
}

}  // namespace
}  // namespace vela::indexer
