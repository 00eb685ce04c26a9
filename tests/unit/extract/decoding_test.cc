#include "indexer/extract/decoding.h"

#include <gtest/gtest.h>

#include <string>

namespace vela::indexer {
namespace {

using namespace std::string_literals;

Reason ConvertToUtf8(std::string_view bytes, bool isHtml, std::string& utf8) {
  ReadingBudget budget;
  const Reason reason = ConvertToUtf8(bytes, isHtml, budget, utf8);
  ReadingBudget other;
  std::string turned;
  EXPECT_EQ(TurnIntoUtf8(std::string(bytes), isHtml, other, turned), reason);
  EXPECT_EQ(turned, utf8);
  return reason;
}

// `text`, of ASCII, in UTF-16 or UTF-32.
std::string Wide(std::string_view text, size_t width, bool isLittle) {
  std::string wide;
  for (const char c : text) {
    std::string unit(width, '\0');
    unit[isLittle ? 0 : width - 1] = c;
    wide += unit;
  }
  return wide;
}

TEST(Decoding, FindsTheCharacterSet) {
  const struct {
    const char* what;
    std::string bytes;
    bool isHtml;
    std::string expected;
  } kCases[] = {
      {"plain ASCII", "abc", true, "abc"},
      {"UTF-8 without a word about it", "caf\xC3\xA9", true, "caf\u00E9"},
      {"a UTF-8 mark is taken off",
       "\xEF\xBB\xBF"
       "caf\xC3\xA9",
       false, "caf\u00E9"},
      {"UTF-16, low byte first",
       "\xFF\xFE"
       "a\0\xE9\0"s,
       true, "a\u00E9"},
      {"UTF-16, high byte first", "\xFE\xFF\0a\0\xE9"s, true, "a\u00E9"},
      {"the mark wins over the page's word", "\xEF\xBB\xBF<meta charset=iso-8859-1>\xC3\xA9", true,
       "<meta charset=iso-8859-1>\u00E9"},
      {"meta charset", "<meta charset=\"iso-8859-2\">\xB3", true,
       "<meta charset=\"iso-8859-2\">\u0142"},
      {"meta http-equiv", "<META HTTP-EQUIV=content-Type CONTENT='text/html; charset=koi8-r'>\xC1",
       true, "<META HTTP-EQUIV=content-Type CONTENT='text/html; charset=koi8-r'>\u0430"},
      {"XML declaration", "<?xml version='1.0' encoding='windows-1251'?>\xE0", true,
       "<?xml version='1.0' encoding='windows-1251'?>\u0430"},
      {"Latin-1 means windows-1252", "<meta charset=iso-8859-1>\x96", true,
       "<meta charset=iso-8859-1>\u2013"},
      {"meta elements mean nothing in a text file", "<meta charset=iso-8859-2>\xC3\xA9", false,
       "<meta charset=iso-8859-2>\u00E9"},
      {"an unknown name is passed over", "<meta charset=none-such>caf\xC3\xA9", true,
       "<meta charset=none-such>caf\u00E9"},
      {"a word about UTF-16 in single bytes is wrong", "<meta charset=utf-16>a", true,
       "<meta charset=utf-16>a"},
      {"one wrong byte among UTF-8 text",
       "<meta charset=utf-8>" + std::string(12, 'x') +
           "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xFF",
       true,
       "<meta charset=utf-8>" + std::string(12, 'x') +
           "\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\u00E9\uFFFD"},
      {"a NUL becomes a blank", "a\0b"s, true, "a b"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    std::string utf8;
    EXPECT_EQ(ConvertToUtf8(c.bytes, c.isHtml, utf8), Reason::kNone);
    EXPECT_EQ(utf8, c.expected);
  }
}

TEST(Decoding, ADeclarationThatCannotBeTrueIsIgnored) {
  for (const char* name :
       {"unicode", "utf16", "ucs-2", "utf-32", "iso-10646-ucs-2", "ebcdic-us", "utf-7"}) {
    SCOPED_TRACE(name);
    const std::string page = "<meta charset=" + std::string(name) + ">caf";
    std::string text;
    EXPECT_EQ(ConvertToUtf8(page + "\u00E9", true, text), Reason::kNone);
    EXPECT_EQ(text, page + "\u00E9");
  }
}

TEST(Decoding, KnowsUnicodeWithoutAMark) {
  const std::string page = "<p>a\tb\r\n</p>";
  for (const bool isHtml : {true, false}) {
    for (const size_t width : {size_t{2}, size_t{4}}) {
      for (const bool isLittle : {true, false}) {
        std::string utf8;
        EXPECT_EQ(ConvertToUtf8(Wide(page, width, isLittle), isHtml, utf8), Reason::kNone);
        EXPECT_EQ(utf8, page) << width << isLittle;
      }
    }
  }
  const struct {
    const char* what;
    std::string bytes, expected;
  } kCases[] = {
      {"whatever it declares", Wide("<meta charset=koi8-r>", 2, true) + "\xC1\0"s,
       "<meta charset=koi8-r>\u00C1"},
      {"letters of two bytes", Wide("<p>", 2, true) + "\x2F\x04\x31\x04"s, "<p>\u042F\u0431"},
      {"letters that are pairs", Wide("<p>", 2, false) + "\xD8\x35\xDD\x04"s, "<p>\U0001D504"},
      {"UTF-32, low byte first", "\xFF\xFE\0\0a\0\0\0\x04\xD5\x01\0"s, "a\U0001D504"},
      {"UTF-32, high byte first", "\0\0\xFE\xFF\0\0\0a"s, "a"},
      {"UTF-16 of three signs, the first a NUL", "\xFF\xFE\0\0a\0"s, " a"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    std::string utf8;
    EXPECT_EQ(ConvertToUtf8(c.bytes, true, utf8), Reason::kNone);
    EXPECT_EQ(utf8, c.expected);
  }
}

TEST(Decoding, WhatOnlyLooksLikeUnicode) {
  const struct {
    const char* what;
    std::string bytes;
    Reason reason;
  } kCases[] = {
      {"numbers of two bytes", Wide("\x01\x02\x03 \x04\x05\x06\x07\x0F", 2, true), Reason::kBinary},
      {"half a pair", "\x00\xD8"s + Wide("some words", 2, true), Reason::kBinary},
      {"letters of no language that writes without blanks",
       "\x01\xE1\x02\xE2\x03\xE3\x04\xE4\x05\xE5\x06\xE6", Reason::kBinary},
      {"letters in pairs", "<p>abcdefgh", Reason::kNone},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    std::string utf8;
    EXPECT_EQ(ConvertToUtf8(c.bytes, true, utf8), c.reason);
    if (c.reason == Reason::kNone) {
      EXPECT_EQ(utf8, c.bytes);
    }
  }
}

// U+65E5 U+672C: 0x467C 0x4B5C in JIS X 0208.
TEST(Decoding, KnowsJapaneseBySwitches) {
  const std::string coded = "a \x1B$BF|K\\\x1B(B b";
  const std::string text = "a \u65E5\u672C b";
  const struct {
    const char* what;
    bool isHtml;
    std::string bytes, expected;
  } kCases[] = {
      {"declared", true, "<meta charset=iso-2022-jp>" + coded, "<meta charset=iso-2022-jp>" + text},
      {"not declared", true, coded, text},
      {"a text", false, coded, text},
      {"never switched back", false, "a \x1B$BF|K\\", "a \x1B$BF|K\\"},
      {"beside other bytes", false, coded + "\u00E9", coded + "\u00E9"},
      {"declared otherwise", true, "<meta charset=utf-8>" + coded, "<meta charset=utf-8>" + coded},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    std::string utf8;
    EXPECT_EQ(ConvertToUtf8(c.bytes, c.isHtml, utf8), Reason::kNone);
    EXPECT_EQ(utf8, c.expected);
  }
}

TEST(Decoding, DoesNotCopyWhatIsUtf8AndNeededNoMore) {
  for (const bool isHtml : {true, false}) {
    std::string bytes = "<meta charset=utf-8>caf\u00E9 " + std::string(1000, 'x');
    const std::string expected = bytes;
    const char* const place = bytes.data();
    ReadingBudget budget;
    std::string utf8;
    EXPECT_EQ(TurnIntoUtf8(std::move(bytes), isHtml, budget, utf8), Reason::kNone);
    EXPECT_EQ(utf8, expected);
    EXPECT_EQ(utf8.data(), place);
  }
}

TEST(Decoding, EndsWhenTheBudgetDoes) {
  const std::string bytes = "<meta charset=iso-8859-2>" + std::string(1 << 20, '\xB3');
  std::string utf8;
  ReadingBudget small;
  small.bytesLimit = 1 << 20;
  EXPECT_EQ(ConvertToUtf8(bytes, true, small, utf8), Reason::kMarkupTooLarge);
  EXPECT_LE(utf8.size(), size_t{1} << 20);
  volatile std::sig_atomic_t stop = 1;
  ReadingBudget stopped;
  stopped.stop = &stop;
  EXPECT_EQ(ConvertToUtf8(bytes, true, stopped, utf8), Reason::kStopped);
}

TEST(Decoding, DetectsByStatistics) {
  // "Die Größe der Bücher über Österreich läßt sich schön lösen." in windows-1252.
  const std::string bytes =
      "Die Gr\xF6\xDF"
      "e der B\xFC"
      "cher \xFC"
      "ber \xD6sterreich l\xE4\xDFt sich sch\xF6n l\xF6sen. "
      "F\xFCr die Sch\xFCler gibt es viele Gr\xFCnde, sp\xE4ter zur\xFC"
      "ck zu kommen.";
  std::string utf8;
  EXPECT_EQ(ConvertToUtf8(bytes, true, utf8), Reason::kNone);
  EXPECT_EQ(utf8.substr(0, 27), "Die Gr\u00F6\u00DFe der B\u00FCcher \u00FCb");
}

TEST(Decoding, RefusesBinaryFiles) {
  std::string utf8;
  EXPECT_EQ(ConvertToUtf8("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\1\0\0\0\1\0\b\6\0\0"s, true, utf8),
            Reason::kBinary);
  EXPECT_EQ(ConvertToUtf8(std::string(1000, '\x01'), false, utf8), Reason::kBinary);
}

TEST(Decoding, BelievesTheServerBeforeThePage) {
  const struct {
    const char* what;
    std::string bytes;
    bool isHtml;
    const char* serverCharset;
    std::string expected;
  } kCases[] = {
      {"over the page's word", "<meta charset=iso-8859-1>\xB3", true, "iso-8859-2",
       "<meta charset=iso-8859-1>\u0142"},
      {"for plain text too", "\xC1", false, "koi8-r", "\u0430"},
      {"under a mark", "\xEF\xBB\xBF\xC3\xA9", true, "iso-8859-1", "\u00E9"},
      {"not where there is no such set", "<meta charset=koi8-r>\xC1", true, "none-such",
       "<meta charset=koi8-r>\u0430"},
      {"not where it is not the set at all", "caf\xE9 caf\xE9", false, "utf-8",
       "caf\u00E9 caf\u00E9"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    ReadingBudget budget;
    std::string utf8;
    EXPECT_EQ(ConvertToUtf8(c.bytes, c.isHtml, budget, utf8, c.serverCharset), Reason::kNone);
    EXPECT_EQ(utf8, c.expected);
  }
}

}  // namespace
}  // namespace vela::indexer
