#include "indexer/collect/file_dates.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace vela::indexer {

namespace {

using Seconds = std::chrono::sys_seconds;

int64_t DayOf(int64_t seconds) {
  const auto time = Seconds(std::chrono::seconds(seconds));
  return std::chrono::floor<std::chrono::days>(time).time_since_epoch().count();
}

std::string DayText(int64_t day) {
  const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(day))};
  char text[40];
  const int length =
      snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(date.year()),
               static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return {text, static_cast<size_t>(length)};
}

}  // namespace

void FileDates::AddPage(uint32_t number, const PageFacts& page) {
  if (page.fileTime == 0) return;  // its server does not say
  ++count_;
  ++files_[DayOf(page.fileTime)];
  if (page.time == page.ownTime) return;
  isDated_.resize(number);
  isDated_.push_back(true);
  if (page.ownTime != 0) owns_.push_back({.page = number, .ownTime = page.ownTime});
}

std::string FileDates::SharedDay() const {
  const auto shared =
      std::ranges::find_if(files_, [this](const auto& day) { return day.second > count_ / 2; });
  return shared == files_.end() ? std::string() : DayText(shared->first);
}

}  // namespace vela::indexer
