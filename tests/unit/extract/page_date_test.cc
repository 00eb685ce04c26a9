#include "indexer/extract/page_date.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(PageDate, ReadsWhatPagesWrite) {
  // 1972-01-01 00:00 UTC is 2 years of 365 days: 730 * 86400 seconds.
  constexpr int64_t kDay = 730 * 86400;
  const struct {
    const char* text;
    int64_t seconds;
  } kCases[] = {
      {"1972-01-01", kDay + 43200},
      {"1972/01/01", kDay + 43200},
      {" 1972-01-01T10:20 ", kDay + 37200},
      {"1972-01-01 10:20:30", kDay + 37230},
      {"1972-01-01T10:20:30.75Z", kDay + 37230},
      {"1972-01-01T10:20+01:00", kDay + 33600},
      {"1972-01-01T10:20:00-0130", kDay + 42600},
      {"1972-02-30", 0},
      {"1972-13-01", 0},
      {"1972-1-1", 0},
      {"1972-01-01T", 0},
      {"1972-01-01T25:00", 0},
      {"1972-01-01T10:20 later", 0},
      {"Sat, 01 Jan 1972 10:20:30 GMT", kDay + 37230},
      {"Sat, 1 jan 1972 10:20:30 +0100", kDay + 33630},
      {"Saturday, 01-Jan-1972 10:20:30 GMT", kDay + 37230},
      {"01 Jan 1972", kDay + 43200},
      {"Sat, 32 Jan 1972 10:20:30 GMT", 0},
      {"Sat, 01 Jon 1972 10:20:30 GMT", 0},
      {"Sat, 01 Jan 72 10:20:30 GMT", 0},
      {"1 January 1972", 0},
      {"1969-12-31", 0},
      {"2038-02-01", 0},
      {"", 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(ReadDate(c.text), c.seconds);
  }
}

TEST(PageDate, SourcesAreTriedInTheirOrder) {
  PageContent page;
  page.metas = {{"date", "1970-01-03"},
                {"dcterms.date", "soon"},
                {"article:published_time", "1970-01-02T00:00"}};
  page.time = "1970-01-05";
  constexpr int64_t kFileTime = 7;
  using enum DateSource;
  EXPECT_EQ(PageDate(page, kFileTime, {kMeta, kTime, kFile}), 86400);
  EXPECT_EQ(PageDate(page, kFileTime, {kTime, kMeta}), 4 * 86400 + 43200);
  EXPECT_EQ(PageDate(page, kFileTime, {kFile}), 7);
  EXPECT_EQ(PageDate(page, kFileTime, {}), 0);
  page.metas = {{"dcterms.date", "soon"}, {"date", "1970-01-03"}};
  EXPECT_EQ(PageDate(page, kFileTime, {kMeta}), 2 * 86400 + 43200);
  EXPECT_EQ(PageDate({}, kFileTime, {kMeta, kTime, kFile}), 7);
}

TEST(PageDate, ReadsDatesOfEveryKindOfElement) {
  const char* const kNames[] = {"article:modified_time",
                                "itemprop:datemodified",
                                "json-ld:datemodified",
                                "og:updated_time",
                                "article:published_time",
                                "itemprop:datepublished",
                                "json-ld:datepublished",
                                "dcterms.modified",
                                "dc.date.modified",
                                "dcterms.date",
                                "dcterms.issued",
                                "dcterms.created",
                                "dc.date",
                                "dc.date.issued",
                                "dc.date.created",
                                "last-modified",
                                "http-equiv:last-modified",
                                "date",
                                "http-equiv:date"};
  PageContent page;
  int64_t day = 0;
  for (const char* name : kNames) {
    char text[20];
    snprintf(text, sizeof text, "1970-01-%02dT00:00", static_cast<int>(day) + 2);
    page.metas.emplace_back(name, text);
    ++day;
  }
  for (int64_t i = 0; i < day; ++i) {  // the first that is there counts
    EXPECT_EQ(PageDate(page, 7, {DateSource::kMeta}), (i + 1) * 86400);
    page.metas.erase(page.metas.begin());
  }
}

}  // namespace
}  // namespace vela::indexer
