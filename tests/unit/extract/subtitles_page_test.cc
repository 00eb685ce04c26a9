#include "indexer/extract/subtitles_page.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace vela::indexer
