#include "indexer/words/index_charset.h"

#include <gtest/gtest.h>

#include "indexer/report/index_error.h"

namespace vela::indexer {
namespace {

TEST(IndexCharset, KnowsItsNames) {
  const IndexCharset utf8("UTF-8");
  EXPECT_TRUE(utf8.utf8());
  EXPECT_EQ(utf8.codepage(), 65001);
  const IndexCharset latin("Windows_1252");
  EXPECT_FALSE(latin.utf8());
  EXPECT_EQ(latin.name(), "windows-1252");
  EXPECT_EQ(latin.codepage(), 1252);
  EXPECT_EQ(IndexCharset("ISO-8859-2").name(), "iso-8859-2");
  for (const char* name : {"", "utf-16", "shift_jis", "klingon"}) {
    SCOPED_TRACE(name);
    EXPECT_THROW(IndexCharset{name}, IndexError);
  }
}

TEST(IndexCharset, Converts) {
  const IndexCharset latin("windows-1252");
  std::string out;
  EXPECT_TRUE(latin.Exactly("\u00FCber \u20AC", out));
  EXPECT_EQ(out, "\xFC\x62\x65r \x80");
  EXPECT_FALSE(latin.Exactly("\u0142", out));
  EXPECT_EQ(latin.WithReferences("a\u0142\u00E9"), "a&#322;\xE9");
  EXPECT_EQ(IndexCharset().WithReferences("a\u0142"), "a\u0142");
}

TEST(IndexCharset, CapitalLettersHaveTheirSmallOnes) {
  const IndexCharset slavic("iso-8859-2");
  const size_t at = slavic.uppers().find('\xA3');  // the l with a stroke
  ASSERT_NE(at, std::string_view::npos);
  EXPECT_EQ(slavic.lowers()[at], '\xB3');
  EXPECT_EQ(slavic.uppers().size(), slavic.lowers().size());
  const IndexCharset turkish("iso-8859-9");
  const size_t dotted = turkish.uppers().find('\xDD');
  ASSERT_NE(dotted, std::string_view::npos);
  EXPECT_EQ(turkish.lowers()[dotted], 'i');
  EXPECT_TRUE(IndexCharset().uppers().empty());
}

}  // namespace
}  // namespace vela::indexer
