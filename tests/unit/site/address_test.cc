#include "indexer/site/address.h"

#include <gtest/gtest.h>

#include "indexer/report/index_error.h"

namespace vela::indexer {
namespace {

TEST(Address, ChecksTheBase) {
  EXPECT_EQ(CheckedBaseUrl("https://x.example"), "https://x.example/");
  EXPECT_EQ(CheckedBaseUrl("http://x.example/docs/"), "http://x.example/docs/");
  EXPECT_EQ(CheckedBaseUrl("/"), "/");
  EXPECT_EQ(CheckedBaseUrl("/docs"), "/docs/");
  for (const char* wrong :
       {"", "x.example", "ftp://x.example/", "javascript:alert(1)", "https://", "https:///path",
        "https://x.example/?q", "https://x.example/#a", "https://x.example/a b",
        "https://x.example/\"", "https://x|y/", "//x.example/"}) {
    SCOPED_TRACE(wrong);
    EXPECT_THROW(CheckedBaseUrl(wrong), IndexError);
  }
}

TEST(Address, EncodesPaths) {
  EXPECT_EQ(PageAddress("https://x.example/", "a/b.html"), "https://x.example/a/b.html");
  EXPECT_EQ(PageAddress("/", "a b/c&d%e?f#g|h\"i'j<k>.html"),
            "/a%20b/c%26d%25e%3Ff%23g%7Ch%22i%27j%3Ck%3E.html");
  EXPECT_EQ(PageAddress("/", "caf\xC3\xA9.html"), "/caf%C3%A9.html");
  EXPECT_EQ(PageAddress("/", "\xFF.html"), "/%FF.html");
}

TEST(Address, EncodesWhatPeopleWrite) {
  const struct {
    const char *what, *written, *expected;
  } kCases[] = {
      {"a blank and an umlaut", "Preis liste/\u00DCber.html", "Preis%20liste/%C3%9Cber.html"},
      {"digits of an escape in capitals", "%c3%9cber.html", "%C3%9Cber.html"},
      {"an escape that nothing needs", "%61b%2Dc.html", "ab-c.html"},
      {"an apostrophe, as PageAddress has it", "bike's.html", "bike%27s.html"},
      {"an escaped slash parts no folders", "a%2fb", "a%2Fb"},
      {"an escaped star is no wildcard", "a%2ab", "a%2Ab"},
      {"a percent sign that begins no escape", "100%.html", "100%25.html"},
      {"cut short", "a%4", "a%254"},
      {"a query keeps its escapes", "a%26?b=%61%26c&d=\u00E9#e", "a%26?b=%61%26c&d=%C3%A9#e"},
      {"the host stays", "https://X.example/a b", "https://X.example/a%20b"},
      {"a host alone", "https://x.example", "https://x.example"},
      {"a host with a query", "https://x.example?q=\u00E9", "https://x.example?q=%C3%A9"},
      {"no host in a query", "\u00E9?u=https://x.example/", "%C3%A9?u=https://x.example/"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(AsEncoded(c.written), c.expected);
    EXPECT_EQ(AsEncoded(c.expected), c.expected);
  }
  EXPECT_EQ(CheckedBaseUrl("https://x.example/\u00DCber"), "https://x.example/%C3%9Cber/");
}

TEST(Address, Resolves) {
  const std::string page = "https://x.example/a/b.html";
  const struct {
    const char *reference, *expected;
  } kCases[] = {
      {"https://Y.example/p", "https://Y.example/p"},
      {"https://y.example", "https://y.example/"},
      {"/c.html", "https://x.example/c.html"},
      {"c.html", "https://x.example/a/c.html"},
      {"./c.html", "https://x.example/a/c.html"},
      {"../c.html", "https://x.example/c.html"},
      {"../../../c.html", "https://x.example/c.html"},
      {"..", "https://x.example/"},
      {"//y.example/c", "https://y.example/c"},
      {"?q=1", "https://x.example/a/b.html?q=1"},
      {"#top", "https://x.example/a/b.html"},
      {" c.html#top ", "https://x.example/a/c.html"},
      {"c.html?x=/../y", "https://x.example/a/c.html?x=/../y"},
      {"/to/https://y.example/z", "https://x.example/to/https://y.example/z"},
      {"to/https://y.example/z", "https://x.example/a/to/https://y.example/z"},
      {"file:///etc/passwd", ""},
      {"javascript:alert(1)", ""},
      {"mailto:a@x.example", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.reference);
    EXPECT_EQ(ResolveAddress(page, c.reference), c.expected);
  }
  EXPECT_EQ(ResolveAddress("/a/b.html", "c.html"), "/a/c.html");
  EXPECT_EQ(ResolveAddress("/a/b.html", "//y.example/c"), "");
  // Would begin with "//" and so name another host.
  EXPECT_EQ(ResolveAddress("/a/b.html", "/.//y.example/c"), "");
  EXPECT_EQ(ResolveAddress("/a/b.html", "..//y.example/c"), "");
  EXPECT_EQ(ResolveAddress(page, "/.//y.example/c"), "https://x.example//y.example/c");
}

TEST(Address, TellsWhatLiesBelow) {
  EXPECT_TRUE(IsBelow("https://x.example/a", "https://x.example/"));
  EXPECT_TRUE(IsBelow("http://X.Example/a", "https://x.example/"));
  EXPECT_FALSE(IsBelow("https://x.example/A/b", "https://x.example/a/"));
  EXPECT_FALSE(IsBelow("https://x.example.evil/a", "https://x.example/"));
  EXPECT_FALSE(IsBelow("https://y.example/x.example/", "https://x.example/"));
}

TEST(Address, StoresNothingThatEndsAnAttribute) {
  EXPECT_EQ(StoredAddress("https://x.example/a?b=1&c=2"), "https://x.example/a?b=1&amp;c=2");
  EXPECT_EQ(StoredAddress("/a\"b'c<d>e|f g\nh\x80\\`"), "/a%22b%27c%3Cd%3Ee%7Cf%20g%0Ah%80%5C%60");
}

TEST(Address, GivesItsWords) {
  EXPECT_EQ(
      AddressText("https://x.example/docs/open-hours/caf%C3%A9.html", "https://x.example/docs/"),
      "open-hours caf\u00E9");
  EXPECT_EQ(AddressText("/index.html", "/"), "index");
  EXPECT_EQ(AddressText("/v1.2/", "/"), "v1.2");
  EXPECT_EQ(AddressText("/a%zz%4", "/"), "a%zz%4");
  EXPECT_EQ(AddressText("/a%2", "/"), "a%2");
}

}  // namespace
}  // namespace vela::indexer
