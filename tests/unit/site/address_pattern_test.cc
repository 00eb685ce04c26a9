#include "indexer/site/address_pattern.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(AddressPattern, PatternsFitAddresses) {
  const struct {
    const char* what;
    const char* pattern;
    bool fits;
  } kCases[] = {
      {"behind the base", "news/*", true},
      {"all of it, not a part", "news/", false},
      {"one character", "news/?.html", true},
      {"case does not count", "NEWS/A.html", true},
      {"the whole path", "/docs/news/*", true},
      {"a path that is not whole", "/news/*", false},
      {"the whole address", "https://x.example/docs/*", true},
      {"another host", "https://y.example/*", false},
      {"everything", "*", true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(FitsAddressPattern("https://x.example/docs/news/a.html", "https://x.example/docs/",
                                 c.pattern),
              c.fits);
  }
  EXPECT_TRUE(FitsAddressPattern("/docs/a.html", "/docs/", "a.html"));
  EXPECT_FALSE(FitsAddressPattern("/other/a.html", "/docs/", "*"));
}

TEST(AddressPattern, PatternsAreWrittenAsPeopleWriteThem) {
  const struct {
    const char* what;
    const char* written;
    bool fits;
  } kCases[] = {
      {"a blank and an accent", "Mein Caf\u00E9/*", true},
      {"encoded", "Mein%20Caf%C3%A9/*", true},
      {"encoded in small letters", "mein%20caf%c3%a9/*", true},
      {"the sign of a number", "*/c#'s.html", true},
      {"the whole path", "/docs/Mein Caf\u00E9/c#?s.html",
       false},  // the apostrophe has three bytes
      {"the whole address", "https://x.example/docs/Mein Caf\u00E9/*", true},
      {"another accent", "Mein Caf\u00E8/*", false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(FitsAddressPattern("https://x.example/docs/Mein%20Caf%C3%A9/c%23%27s.html",
                                 "https://x.example/docs/", AddressPattern(c.written)),
              c.fits);
  }
  EXPECT_EQ(AddressPattern("news/?*.html"), "news/?*.html");
}

}  // namespace
}  // namespace vela::indexer
