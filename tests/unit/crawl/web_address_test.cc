#include "indexer/crawl/web_address.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(WebAddress, HasOneForm) {
  const struct {
    const char* what;
    const char* text;
    const char* address;  // empty: none
    const char* origin;
    const char* path;
  } kCases[] = {
      {"as it is", "https://x.example/a?b=1", "https://x.example/a?b=1", "https://x.example",
       "/a?b=1"},
      {"a host alone", "http://x.example", "http://x.example/", "http://x.example", "/"},
      {"a query behind the host", "http://x.example?a", "http://x.example/?a", "http://x.example",
       "/?a"},
      {"letters of scheme and host", "HTTPS://X.Example/A", "https://x.example/A",
       "https://x.example", "/A"},
      {"the usual port", "https://x.example:443/", "https://x.example/", "https://x.example", "/"},
      {"another port", "http://x.example:8080/a", "http://x.example:8080/a",
       "http://x.example:8080", "/a"},
      {"the usual port of the other scheme", "http://x.example:443/", "http://x.example:443/",
       "http://x.example:443", "/"},
      {"a fragment", "http://x.example/a#b?c", "http://x.example/a", "http://x.example", "/a"},
      {"steps", "http://x.example/a/../b/./c", "http://x.example/b/c", "http://x.example", "/b/c"},
      {"escaped steps", "http://x.example/a/%2e%2E/b", "http://x.example/b", "http://x.example",
       "/b"},
      {"characters", "http://x.example/\u00FC b", "http://x.example/%C3%BC%20b", "http://x.example",
       "/%C3%BC%20b"},
      {"needless codes", "http://x.example/%61%2f", "http://x.example/a%2F", "http://x.example",
       "/a%2F"},
      {"IPv6", "http://[::1]:8080/", "http://[::1]:8080/", "http://[::1]:8080", "/"},
      {"numbers that are an address", "http://0x7f.1/", "http://127.0.0.1/", "http://127.0.0.1",
       "/"},
      {"another scheme", "ftp://x.example/", "", "", ""},
      {"a file", "file:///etc/passwd", "", "", ""},
      {"a user", "http://u:p@x.example/", "", "", ""},
      {"no host", "http:///a", "", "", ""},
      {"a blank in the host", "http://x example/", "", "", ""},
      {"a line end", "http://x.example\r\nHost: y/", "", "", ""},
      {"a port that is none", "http://x.example:99999/", "", "", ""},
      {"no address", "x.example/a", "", "", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    const std::optional<WebAddress> read = ReadWebAddress(c.text);
    ASSERT_EQ(read.has_value(), *c.address != '\0');
    if (!read.has_value()) continue;
    EXPECT_EQ(read->address, c.address);
    EXPECT_EQ(read->origin, c.origin);
    EXPECT_EQ(read->path, c.path);
    EXPECT_EQ(read->origin, read->origin.substr(0, read->origin.find("://") + 3) + read->authority);
  }
  EXPECT_FALSE(ReadWebAddress("http://x.example/" + std::string(kWebAddressLimit, 'a')));
}

TEST(WebAddress, LinksAreResolved) {
  EXPECT_EQ(ReadWebLink("http://x.example/a/b", "../c")->address, "http://x.example/c");
  EXPECT_EQ(ReadWebLink("https://x.example/a", "//Y.example/")->address, "https://y.example/");
  EXPECT_FALSE(ReadWebLink("http://x.example/a", "mailto:a@x.example").has_value());
}

TEST(WebAddress, AuthoritiesHaveTheSameForm) {
  EXPECT_EQ(ReadAuthority("X.Example"), "x.example");
  EXPECT_EQ(ReadAuthority("x.example:80"), "x.example");
  EXPECT_EQ(ReadAuthority("x.example:443"), "x.example:443");
  EXPECT_EQ(ReadAuthority("x.example/a"), "");
  EXPECT_EQ(ReadAuthority("u@x.example"), "");
  EXPECT_EQ(ReadAuthority(""), "");
}

}  // namespace
}  // namespace vela::indexer
