#include "indexer/extract/decoding.h"

#include <gtest/gtest.h>

#include <string>

namespace vela::indexer {
namespace {

using namespace std::string_literals;

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
      {"meta http-equiv", "<META HTTP-EQUIV=x CONTENT='text/html; charset=koi8-r'>\xC1", true,
       "<META HTTP-EQUIV=x CONTENT='text/html; charset=koi8-r'>\u0430"},
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
  for (const char* name : {"unicode", "utf16", "ucs-2", "utf-32", "iso-10646-ucs-2", "ebcdic-us"}) {
    SCOPED_TRACE(name);
    const std::string page = "<meta charset=" + std::string(name) + ">caf";
    std::string text;
    EXPECT_EQ(ConvertToUtf8(page + "\u00E9", true, text), Reason::kNone);
    EXPECT_EQ(text, page + "\u00E9");
  }
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

}  // namespace
}  // namespace vela::indexer
