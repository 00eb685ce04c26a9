#include "support/text_diff.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace vela::support {
namespace {

// The lines of the text, each with its line feed; the last one may be without.
std::vector<std::string_view> Lines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const size_t feed = text.find('\n');
    const size_t length = feed == std::string_view::npos ? text.size() : feed + 1;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

std::string Marked(char mark, std::string_view line) {
  std::string text(1, mark);
  text += ' ';
  if (line.ends_with('\n')) {
    line.remove_suffix(1);
    return text + Visible(line) + "\n";
  }
  return text + Visible(line) + "   [no line feed]\n";
}

constexpr size_t kContext = 3;          // common lines kept around a difference
constexpr size_t kLongestTable = 4000;  // lines; beyond it a table of lengths would be too large

}  // namespace

std::string Visible(std::string_view line) {
  std::string text;
  for (const char c : line) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7F) {
      text += c;
    } else {
      char escape[8];
      snprintf(escape, sizeof escape, "\\x%02X", byte);
      text += escape;
    }
  }
  return text;
}

std::string DiffLines(std::string_view expected, std::string_view actual) {
  if (expected == actual) return "";
  const std::vector<std::string_view> a = Lines(expected);
  const std::vector<std::string_view> b = Lines(actual);
  if (a.size() > kLongestTable || b.size() > kLongestTable) return "too many lines to compare\n";

  // common[i][j]: length of the longest common run of lines of a[i..] and b[j..].
  std::vector<std::vector<int>> common(a.size() + 1, std::vector<int>(b.size() + 1, 0));
  for (size_t i = a.size(); i-- > 0;) {
    for (size_t j = b.size(); j-- > 0;) {
      common[i][j] =
          a[i] == b[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
    }
  }
  struct Row {
    char mark;
    std::string_view line;
  };
  std::vector<Row> rows;
  size_t i = 0;
  size_t j = 0;
  while (i < a.size() || j < b.size()) {
    if (i < a.size() && j < b.size() && a[i] == b[j]) {
      rows.push_back({' ', a[i]});
      ++i;
      ++j;
    } else if (i < a.size() && (j == b.size() || common[i + 1][j] >= common[i][j + 1])) {
      rows.push_back({'-', a[i++]});
    } else {
      rows.push_back({'+', b[j++]});
    }
  }

  std::string text;
  bool left = false;  // lines were left out since the last one shown
  for (size_t r = 0; r < rows.size(); ++r) {
    const size_t first = r > kContext ? r - kContext : 0;
    const size_t last = std::min(rows.size() - 1, r + kContext);
    bool near = false;
    for (size_t k = first; k <= last; ++k) near = near || rows[k].mark != ' ';
    if (!near) {
      left = true;
      continue;
    }
    if (left) text += "  ...\n";
    left = false;
    text += Marked(rows[r].mark, rows[r].line);
  }
  return text;
}

}  // namespace vela::support
