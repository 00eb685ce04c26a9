#include "text/shown_numbers.h"

#include <cstdio>
#include <iterator>

namespace vela {

std::string CountText(uint64_t count) {
  std::string text = std::to_string(count);
  for (size_t at = text.size(); at > 3;) {
    at -= 3;
    text.insert(at, ",");
  }
  return text;
}

std::string BytesText(uint64_t bytes) {
  constexpr const char* kUnits[] = {"kB", "MB", "GB", "TB"};
  if (bytes < 1000) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  double value = static_cast<double>(bytes) / 1000;
  size_t unit = 0;
  while (value >= 999.5 && unit + 1 < std::size(kUnits)) {
    value /= 1000;
    ++unit;
  }
  char text[40];
  snprintf(text, sizeof text, value < 9.95 ? "%.1f %s" : "%.0f %s", value, kUnits[unit]);
  return text;
}

}  // namespace vela
