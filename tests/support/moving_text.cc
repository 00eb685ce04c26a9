#include "support/moving_text.h"

#include <array>
#include <cstdlib>
#include <regex>

namespace vela::support {
namespace {

struct Placeholder {
  std::string_view name;
  const char* form;
};
constexpr std::array kPlaceholders = {
    Placeholder{"{DATE}", "[0-9]{4}-[0-9]{2}-[0-9]{2}"},
    Placeholder{"{TIME}", "[0-9]{2}:[0-9]{2}:[0-9]{2}"},
    Placeholder{"{SECONDS}", "[0-9]+\\.[0-9]{3}"},
};

// The length of the text at the start of `text` that has the form; 0 when there is none.
size_t MatchLength(std::string_view text, const char* form) {
  std::match_results<std::string_view::const_iterator> match;
  const bool found = std::regex_search(text.begin(), text.end(), match, std::regex(form),
                                       std::regex_constants::match_continuous);
  return found ? static_cast<size_t>(match.length()) : 0;
}

const Placeholder* PlaceholderAt(std::string_view text) {
  for (const Placeholder& placeholder : kPlaceholders) {
    if (text.starts_with(placeholder.name)) return &placeholder;
  }
  return nullptr;
}

}  // namespace

std::string WithPlaceholders(std::string_view actual, std::string_view expected) {
  std::string text;
  while (!actual.empty() && !expected.empty()) {
    const Placeholder* placeholder = PlaceholderAt(expected);
    const size_t length = placeholder != nullptr ? MatchLength(actual, placeholder->form) : 0;
    if (length != 0) {
      text += placeholder->name;
      actual.remove_prefix(length);
      expected.remove_prefix(placeholder->name.size());
    } else if (actual[0] == expected[0]) {
      text.push_back(actual[0]);
      actual.remove_prefix(1);
      expected.remove_prefix(1);
    } else {
      break;
    }
  }
  return text + std::string(actual);
}

std::string LoggedTime(std::string_view line) {
  const size_t length = MatchLength(line, "[0-9]{4}-[0-9]{2}-[0-9]{2}, [0-9]{2}:[0-9]{2}:[0-9]{2}");
  return std::string(line.substr(0, length));
}

std::string LocalTime(time_t moment, const std::string& zone) {
  setenv("TZ", zone.c_str(), 1);
  tzset();
  tm parts = {};
  localtime_r(&moment, &parts);
  char text[32];
  return {text, strftime(text, sizeof text, "%Y-%m-%d, %H:%M:%S", &parts)};
}

}  // namespace vela::support
