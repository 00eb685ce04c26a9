#include "indexer/extract/page_date.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace vela::indexer {

namespace {

constexpr std::string_view kDateMetas[] = {
    "article:modified_time",
    "article:published_time",
    "dcterms.modified",
    "dcterms.date",
    "dc.date",
    "last-modified",
    "date",
};

// Takes exactly `digits` digits off the text; -1 when they are not there.
int TakeNumber(std::string_view& text, size_t digits) {
  if (text.size() < digits) return -1;
  int number = 0;
  for (const char c : text.substr(0, digits)) {
    if (c < '0' || c > '9') return -1;
    number = number * 10 + (c - '0');
  }
  text.remove_prefix(digits);
  return number;
}

bool TakeSign(std::string_view& text, std::string_view signs) {
  if (text.empty() || signs.find(text.front()) == signs.npos) return false;
  text.remove_prefix(1);
  return true;
}

// "18:30", "18:30:05", "18:30:05.25", and an offset. False for anything else.
bool ReadTime(std::string_view text, int64_t& seconds) {
  const int hour = TakeNumber(text, 2);
  const int minute = TakeSign(text, ":") ? TakeNumber(text, 2) : -1;
  int second = 0;
  if (TakeSign(text, ":")) second = TakeNumber(text, 2);
  if (hour < 0 || hour > 24 || minute < 0 || minute > 59 || second < 0 || second > 60) return false;
  seconds = hour * 3600 + minute * 60 + second;
  if (TakeSign(text, ".,")) {
    text.remove_prefix(std::min(text.find_first_not_of("0123456789"), text.size()));
  }
  TakeSign(text, " ");
  if (text.empty() || text == "Z" || text == "z" || text == "UTC" || text == "GMT") return true;
  const bool west = text.front() == '-';
  if (!TakeSign(text, "+-")) return false;
  const int hours = TakeNumber(text, 2);
  TakeSign(text, ":");
  const int minutes = text.empty() ? 0 : TakeNumber(text, 2);
  if (hours < 0 || minutes < 0 || !text.empty()) return false;
  const int64_t offset = hours * 3600 + minutes * 60;
  seconds += west ? offset : -offset;
  return true;
}

}  // namespace

int64_t ReadDate(std::string_view text) {
  using namespace std::chrono;
  constexpr int64_t kNoon = 12 * 3600;
  while (TakeSign(text, " \t\r\n")) {
  }
  while (!text.empty() && static_cast<unsigned char>(text.back()) <= 0x20) text.remove_suffix(1);
  const int y = TakeNumber(text, 4);
  const int m = TakeSign(text, "-/") ? TakeNumber(text, 2) : -1;
  const int d = TakeSign(text, "-/") ? TakeNumber(text, 2) : -1;
  if (y < 0 || m < 0 || d < 0) return 0;
  const year_month_day date = year{y} / m / d;
  if (!date.ok()) return 0;
  int64_t time = kNoon;
  if (!text.empty() && (!TakeSign(text, "Tt ") || !ReadTime(text, time))) return 0;
  const int64_t result = sys_days{date}.time_since_epoch().count() * int64_t{24 * 3600} + time;
  return result > 0 && result <= std::numeric_limits<int32_t>::max() ? result : 0;
}

int64_t PageDate(const PageContent& page, int64_t fileTime,
                 const std::vector<DateSource>& sources) {
  for (const DateSource source : sources) {
    int64_t date = 0;
    switch (source) {
      case DateSource::kMeta:
        for (const std::string_view name : kDateMetas) {
          if (date == 0) date = ReadDate(MetaContent(page, name));
        }
        break;
      case DateSource::kTime:
        date = ReadDate(page.time);
        break;
      case DateSource::kFile:
        date = fileTime;
        break;
    }
    if (date != 0) return date;
  }
  return 0;
}

}  // namespace vela::indexer
