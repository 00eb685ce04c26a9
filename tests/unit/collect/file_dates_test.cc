#include "indexer/collect/file_dates.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

constexpr int64_t kDay = 24 * 3600;
constexpr int64_t kFirst = 20517 * kDay;  // 2026-03-05 begins

TEST(FileDates, ADayIsSharedByMoreThanHalfOfTheFiles) {
  const struct {
    const char* what;
    std::vector<int64_t> times;
    const char* day;
  } kCases[] = {
      {"no page", {}, ""},
      {"one page", {kFirst}, "2026-03-05"},
      {"exactly half", {kFirst, kFirst + 1, kFirst - 1, kFirst + kDay}, ""},
      {"more than half", {kFirst, kFirst + kDay - 1, kFirst - 1}, "2026-03-05"},
      {"the day before 1970", {-1, -kDay}, "1969-12-31"},
      {"what servers do not say is no day", {0, 0, 0, kFirst, kFirst + kDay}, ""},
      {"a year of five digits", {int64_t{253402300800}}, "10000-01-01"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    FileDates dates;
    uint32_t number = 0;
    for (const int64_t time : c.times) {
      PageFacts page;
      page.fileTime = time;
      dates.AddPage(number++, page);
    }
    EXPECT_EQ(dates.SharedDay(), c.day);
  }
}

TEST(FileDates, PagesDatedByTheirFileAreKept) {
  FileDates dates;
  PageFacts page;
  page.fileTime = 7;
  page.time = page.ownTime = 3;  // by a meta element
  dates.AddPage(0, page);
  page.time = 7;
  dates.AddPage(1, page);
  page.ownTime = 0;
  dates.AddPage(2, page);
  page.ownTime = 5;
  dates.AddPage(6, page);
  std::string pages;
  dates.ForEachPage([&](const FileDate& each) {
    pages += std::to_string(each.page) + ":" + std::to_string(each.ownTime) + " ";
  });
  EXPECT_EQ(pages, "1:3 2:0 6:5 ");
}

}  // namespace
}  // namespace vela::indexer
