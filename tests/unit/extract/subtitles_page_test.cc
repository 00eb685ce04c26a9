#include "indexer/extract/subtitles_page.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace vela::indexer {
namespace {

TEST(SubtitlesPage, TakesWhatIsSaid) {
  const struct {
    const char* what;
    const char* text;
    const char* title;
    const char* said;
  } cases[] = {
      {"SubRip",
       "1\n00:00:01,000 --> 00:00:02,000\nGood <i>day</i>.\nYou.\n\n2\n"
       "00:00:03,000 --> 00:00:04,000\n{\\an8}Bye.\n",
       "", "Good day. You. Bye. "},
      {"WebVTT",
       "\xEF\xBB\xBFWEBVTT - The film\nKind: captions\n\nNOTE no\n\nSTYLE\n::cue {}\n\n"
       "a name\n00:01.000 --> 00:02.000 align:start\n<v Ann>Tom &amp; I</v>\n",
       "The film", "Tom & I "},
      {"line ends of Windows",
       "1\r\n00:00:01,000 --> 00:00:02,000\r\nOne\r\n\r\n2\r\n"
       "00:00:03,000 --> 00:00:04,000\r\nTwo\r\n",
       "", "One Two "},
      {"rolling captions",
       "WEBVTT\n\n00:01.000 --> 00:02.000\none\n\n00:02.000 --> 00:03.000\none\n"
       "two\n\n00:03.000 --> 00:04.000\ntwo\nthree\n",
       "", "one two three "},
      {"what opens and does not close is text", "0:1 --> 0:2\na < b {\\c\n", "", "a < b {\\c "},
      {"a title in quotes", "WEBVTT \u2013 \u201CRain\u201D\n\n0:1 --> 0:2\nx\n",
       "\u201CRain\u201D", "x "},
      {"what closes twice", "0:1 --> 0:2\n<i>a> {\\b}c} <d\n", "", "a> c} <d "},
      {"times in what is said", "0:1 --> 0:2\nto --> from\n\n\nno\n0:3 --> 0:4\nbye", "",
       "to --> from bye "},
      {"nothing with times", "WEBVTT\n\nNOTE x\n", "", ""},
      {"nothing", "", "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    PageContent page;
    ParseSubtitlesPage(c.text, page);
    EXPECT_EQ(page.title, c.title);
    EXPECT_EQ(page.body.empty() ? "" : page.body[0].text, c.said);
    EXPECT_LE(page.body.size(), 1u);
  }
}

// A line of two megabytes in which every character opens something.
TEST(SubtitlesPage, LongLinesTakeNoLonger) {
  constexpr size_t kMany = 1'000'000;
  std::string braces;
  for (size_t i = 0; i < kMany; ++i) braces += "{\\";
  for (const std::string& line : {std::string(2 * kMany, '<'), braces, "a>" + braces}) {
    PageContent page;
    const auto begin = std::chrono::steady_clock::now();
    ParseSubtitlesPage("0:1 --> 0:2\n" + line, page);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
    ASSERT_EQ(page.body.size(), 1u);
    EXPECT_EQ(page.body[0].text, line + " ");
  }
}

}  // namespace
}  // namespace vela::indexer
