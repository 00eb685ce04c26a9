#include "indexer/explanation/wording.h"

#include <cstddef>
#include <ctime>

#include "indexer/words/clean_text.h"
#include "text/shown_numbers.h"

namespace vela::indexer {

namespace {

constexpr size_t kQuotedBytes = 80;

}  // namespace

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

std::string Excerpt(std::string text) {
  CleanText(text);
  text = CollapseBlanks(text);
  if (text.size() <= kQuotedBytes) return text;
  size_t end = kQuotedBytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) >> 6) == 2) --end;
  return text.substr(0, end) + "...";
}

std::string Counted(uint64_t count, const char* one, const char* several) {
  return CountText(count) + " " + (count == 1 ? one : several);
}

std::string Words(uint64_t count) { return Counted(count, "word", "words"); }

std::string DateText(int64_t seconds) {
  const std::time_t time = seconds;
  struct tm parts = {};
  char text[40] = "";
  if (gmtime_r(&time, &parts) != nullptr) strftime(text, sizeof text, "%F %H:%M UTC", &parts);
  return text;
}

std::string LeftOutText(Reason reason, const std::string& other) {
  const std::string text = "left out: " + std::string(ReasonText(reason));
  return other.empty() ? text : text + ", " + other;
}

}  // namespace vela::indexer
