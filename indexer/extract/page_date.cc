#include "indexer/extract/page_date.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>

#include "indexer/words/lower_copy.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kDateMetas[] = {
    "article:modified_time",
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
    "http-equiv:date",
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

// The month that a text begins with, in three letters of any case, from 1 on; -1 for none.
int TakeMonthName(std::string_view& text) {
  constexpr std::string_view kMonths = "janfebmaraprmayjunjulaugsepoctnovdec";
  constexpr size_t kLength = 3;
  const std::string name = LowerAsciiCopy(text.substr(0, kLength));
  for (size_t i = 0; i < kMonths.size(); i += kLength) {
    if (name != kMonths.substr(i, kLength)) continue;
    text.remove_prefix(kLength);
    return static_cast<int>(i / kLength) + 1;
  }
  return -1;
}

// Takes "2026-03-05" off the text, or "Thu, 05 Mar 2026", whose day of the week may be missing and
// is not compared. False for anything else.
bool TakeDay(std::string_view& text, std::chrono::year_month_day& date) {
  using namespace std::chrono;
  if (text.size() >= 4 && text.find_first_not_of("0123456789") >= 4) {
    const int y = TakeNumber(text, 4);
    const int m = TakeSign(text, "-/") ? TakeNumber(text, 2) : -1;
    const int d = TakeSign(text, "-/") ? TakeNumber(text, 2) : -1;
    if (m < 0 || d < 0) return false;
    date = year{y} / m / d;
    return date.ok();
  }
  constexpr size_t kLongestWeekday = 9;  // "Wednesday"
  if (const size_t comma = text.find(','); comma <= kLongestWeekday) {
    text.remove_prefix(comma + 1);
    TakeSign(text, " ");
  }
  const int d = TakeNumber(text, text.size() > 1 && IsDigit(text[1]) ? 2 : 1);
  const int m = TakeSign(text, " -") ? TakeMonthName(text) : -1;
  const int y = TakeSign(text, " -") ? TakeNumber(text, 4) : -1;
  if (d < 0 || m < 0 || y < 0) return false;
  date = year{y} / m / d;
  return date.ok();
}

}  // namespace

int64_t ReadDate(std::string_view text) {
  using namespace std::chrono;
  constexpr int64_t kNoon = 12 * 3600;
  while (TakeSign(text, " \t\r\n")) {
  }
  while (!text.empty() && static_cast<unsigned char>(text.back()) <= 0x20) text.remove_suffix(1);
  year_month_day date;
  if (!TakeDay(text, date)) return 0;
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
