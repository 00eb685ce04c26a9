#include "indexer/report/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kBold = "\033[1m";
constexpr std::string_view kYellow = "\033[33m";
constexpr std::string_view kPlain = "\033[0m";

std::string_view Variable(const char* name) {
  const char* value = getenv(name);
  return value == nullptr ? std::string_view() : value;
}

}  // namespace

bool ShowsColors(int descriptor) {
  const std::string_view terminal = Variable("TERM");
  return isatty(descriptor) != 0 && Variable("NO_COLOR").empty() && !terminal.empty() &&
         terminal != "dumb";
}

std::string Shown(std::string text) {
  std::ranges::replace_if(text, IsControl, '?');
  return text;
}

std::string Colored(const std::string& summary) {
  std::string colored;
  for (size_t at = 0; at < summary.size();) {
    const size_t end = std::min(summary.find('\n', at), summary.size());
    const std::string_view line = std::string_view(summary).substr(at, end - at);
    const std::string_view color = at == 0                         ? kBold
                                   : line.starts_with("Warning: ") ? kYellow
                                                                   : std::string_view();
    colored.append(color).append(line).append(color.empty() ? color : kPlain);
    if (end < summary.size()) colored += '\n';
    at = end + 1;
  }
  return colored;
}

size_t TerminalWidth(int descriptor) {
  struct winsize size = {};
  return ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace vela::indexer
