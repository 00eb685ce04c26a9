#include "output/markup.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/loaded_site.h"

namespace vela {
namespace {

using namespace std::string_literals;
using support::Repeat;

std::string Escaped(const std::string& text, size_t capacity) {
  // One block of each, exactly as large as promised.
  std::vector<char> buffer(capacity, '#');
  std::vector<char> scratch(capacity);
  text.copy(buffer.data(), text.size());
  buffer[text.size()] = '\0';
  const size_t length = HtmlEscape(buffer.data(), text.size(), capacity, scratch.data());
  EXPECT_LT(length, capacity);
  EXPECT_EQ(buffer[length], '\0');
  return std::string(buffer.data(), length);
}

TEST(HtmlEscape, AmpersandIsNotEscapedTwice) {
  EXPECT_EQ(Escaped("a<b & 'c'", 100), "a&#60;b &#38; &#39;c&#39;");
}

TEST(HtmlEscape, Table) {
  const struct {
    const char* what;
    const char* text;
    size_t capacity;
    const char* expected;
  } cases[] = {
      {"nothing to do", "plain", 100, "plain"},
      {"empty", "", 100, ""},
      {"all five", "&<>\"'", 100, "&#38;&#60;&#62;&#34;&#39;"},
      {"a reference is escaped again", "&#38;", 100, "&#38;#38;"},
      {"it just fits", "<b>", 12, "&#60;b&#62;"},
      {"the last step does not fit", "<b>", 11, "&#60;b>"},
      {"no step fits", "<b>", 7, "<b>"},
      {"a step is left out, a later one fits", "&&<", 10, "&&&#60;"},
      {"later steps find no room", "&&\"'", 13, "&#38;&#38;\"'"},
      {"one byte less: another step has the room", "&&\"'", 12, "&&&#34;'"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Escaped(c.text, c.capacity), c.expected);
  }
}

TEST(EscapeRequestText, IsNeverPartlyEscaped) {
  const struct {
    const char* what;
    const char* text;
    size_t capacity;
    const char* expected;
  } cases[] = {
      {"it fits", "<b> & \"c\"", 100, "&#60;b&#62; &#38; &#34;c&#34;"},
      {"it just fits", "<b>", 12, "&#60;b&#62;"},
      {"cut before the reference that does not fit", "<b>", 11, "&#60;b"},
      {"nothing behind the cut, even where it would fit", "<>b", 10, "&#60;"},
      {"plain text is cut at the end", "abcdef", 4, "abc"},
      {"no room", "abc", 1, ""},
      {"empty", "", 5, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    std::vector<char> out(c.capacity, '#');
    const size_t length = EscapeRequestText(c.text, out.data(), c.capacity);
    EXPECT_EQ(std::string(out.data(), length), c.expected);
    EXPECT_EQ(out[length], '\0');
  }
}

TEST(EscapeRequestText, OfNoCapacityWritesNothing) {
  char byte = '#';
  EXPECT_EQ(EscapeRequestText("abc", &byte, 0), 0u);
  EXPECT_EQ(byte, '#');
}

std::string Encoded(const std::string& text, size_t capacity = 200) {
  std::vector<char> out(capacity, '#');
  const size_t length = UrlEncode(text, out.data(), capacity);
  EXPECT_EQ(out[length], '\0');
  return std::string(out.data(), length);
}

TEST(UrlEncode, SlashAndBlank) { EXPECT_EQ(Encoded("a b/c"), "a+b%2Fc"); }

TEST(UrlEncode, ByteBelow16EndsTheText) { EXPECT_EQ(Encoded("x\ty"), "x%9"); }

TEST(UrlEncode, Table) {
  const struct {
    const char* what;
    std::string text;
    const char* expected;
  } cases[] = {
      {"letters, digits, hyphen and underscore stay", "AZaz09-_", "AZaz09-_"},
      {"full stop, tilde and asterisk do not", ".~*", "%2E%7E%2A"},
      {"the percent sign", "100%", "100%25"},
      {"what separates parameters", "a&b=c+d", "a%26b%3Dc%2Bd"},
      {"quotes", "\"'", "%22%27"},
      {"upper-case hexadecimal digits", "\xC3\xA9\xFF", "%C3%A9%FF"},
      {"byte 16 has two digits", "\x10z", "%10z"},
      {"byte 15 has one", "\x0Fz", "%F"},
      {"a NUL inside", "a\0b"s, "a%0"},
      {"a line feed", "a\nb", "a%A"},
      {"empty", "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Encoded(c.text), c.expected);
  }
}

TEST(UrlEncode, IsCutAtTheCapacity) {
  EXPECT_EQ(Encoded("abcdef", 4), "abc");
  EXPECT_EQ(Encoded("abc", 4), "abc");
  EXPECT_EQ(Encoded("ab/", 6), "ab%2F");
  EXPECT_EQ(Encoded("abc", 1), "");
}

TEST(BuildUrl, QuestionMarkOrAmpersand) {
  const struct {
    const char* base;
    const char* expected;
  } cases[] = {
      {"page.html", "page.html?a=b c"},
      {"page.html?x=1", "page.html?x=1&amp;a=b c"},
      {"page.html#top", "page.html#top?a=b c"},
      {"page.html#top?", "page.html#top?&amp;a=b c"},
      {"", "?a=b c"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.base);
    FixedText<100> out;
    Set(out, "old");
    BuildUrl(out, c.base, "a=", "b c");
    EXPECT_EQ(View(out), c.expected);
  }
}

TEST(BuildUrlKeepFragment, PutsTheFragmentAtTheEnd) {
  const struct {
    const char* base;
    const char* expected;
  } cases[] = {
      {"page.html#top", "page.html?vela_highlight=x#top"},
      {"page.html", "page.html?vela_highlight=x"},
      {"page.html?a#top", "page.html?a&amp;vela_highlight=x#top"},
      {"page.html#top?a", "page.html&amp;vela_highlight=x#top?a"},
      {"page.html#a#b", "page.html?vela_highlight=x#a#b"},
      {"page.html#", "page.html?vela_highlight=x#"},
      {"#top", "?vela_highlight=x#top"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.base);
    FixedText<100> out;
    BuildUrlKeepFragment(out, c.base, "vela_highlight=", "x");
    EXPECT_EQ(View(out), c.expected);
  }
}

TEST(BuildUrl, IsCutAtTheSizeOfTheOutput) {
  FixedText<2084> out;
  BuildUrl(out, Repeat("u", 2080), "a=", "b");
  EXPECT_EQ(View(out), Repeat("u", 2080) + "?a=");
  BuildUrl(out, Repeat("u", 3000), "a=", "b");
  EXPECT_EQ(View(out), Repeat("u", 2083));
}

TEST(AppendSafeAddress, Table) {
  const struct {
    const char* what;
    const char* text;
    const char* expected;
  } cases[] = {
      {"an address stays", "/cgi/search.cgi?a=%20b+c;d~e#f", "/cgi/search.cgi?a=%20b+c;d~e#f"},
      {"quotes", "a\"b'c", "a%22b%27c"},
      {"brackets", "<b>", "%3Cb%3E"},
      {"ampersand and backslash", "a&b\\c", "a%26b%5Cc"},
      {"control bytes",
       "a\nb\tc\x01"
       "d\x7F",
       "a%0Ab%09c%01d%7F"},
      {"blanks and bytes from 0x80 on stay", "a b\xE9", "a b\xE9"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    FixedText<200> out;
    AppendSafeAddress(out, c.text);
    EXPECT_EQ(View(out), c.expected);
  }
}

}  // namespace
}  // namespace vela
