#include "indexer/collect/recommended_pages.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(RecommendedPages, AreFoundByTheAddressesOfRules) {
  CanonicalAddresses addresses("https://x.example/");
  addresses.Note("https://x.example/h.html", 0);
  addresses.Note("https://x.example/c/index.html", 1);
  addresses.Note("https://x.example/notes/Preis%20liste.txt", 2);
  addresses.Note("https://x.example/%C3%9Cber.html", 3);
  const struct {
    const char* address;
    std::optional<uint32_t> page;
  } kCases[] = {
      {"h.html", 0},
      {"/h.html", 0},
      {"http://X.example/h.html", 0},
      {"https://x.example/c/", 1},
      {"c/index.html", 1},
      {"notes/Preis liste.txt", 2},
      {"https://x.example/\u00DCber.html#top", 3},
      {"%c3%9cber.html", 3},
      {"gone.html", std::nullopt},
      {"https://elsewhere.example/h.html", std::nullopt},
      {"mailto:h.html", std::nullopt},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.address);
    EXPECT_EQ(RecommendedPage({"word", c.address, "line 1"}, addresses, "https://x.example/"),
              c.page);
  }
}

}  // namespace
}  // namespace vela::indexer
