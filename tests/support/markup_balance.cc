#include "support/markup_balance.h"

#include <algorithm>
#include <vector>

namespace vela::support {

namespace {

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// Takes the rest of a tag, its attributes and ">", off the text.
void SkipTag(std::string_view& rest) {
  char quote = '\0';
  size_t i = 0;
  for (; i < rest.size(); ++i) {
    if (quote != '\0') {
      if (rest[i] == quote) quote = '\0';
    } else if (rest[i] == '"' || rest[i] == '\'') {
      quote = rest[i];
    } else if (rest[i] == '>') {
      break;
    }
  }
  rest.remove_prefix(std::min(i + 1, rest.size()));
}

void SkipPast(std::string_view& rest, std::string_view end) {
  const size_t at = rest.find(end);
  rest.remove_prefix(at == rest.npos ? rest.size() : at + end.size());
}

}  // namespace

std::string UnbalancedElement(std::string_view html) {
  std::vector<std::string_view> open;
  std::string_view rest = html;
  for (size_t at = rest.find('<'); at != rest.npos; at = rest.find('<')) {
    rest.remove_prefix(at + 1);
    if (rest.starts_with("!--")) {
      SkipPast(rest, "-->");
      continue;
    }
    const bool closes = rest.starts_with('/');
    if (closes) rest.remove_prefix(1);
    if (rest.empty() || !IsLetter(rest[0])) continue;
    const auto* end = std::find_if_not(rest.begin(), rest.end(), [](char c) {
      return IsLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == ':';
    });
    const std::string_view name = rest.substr(0, static_cast<size_t>(end - rest.begin()));
    rest.remove_prefix(name.size());
    SkipTag(rest);
    if (IsOneOf(name, {"html", "head", "body", "br", "img", "input", "meta", "link", "hr"})) {
      continue;
    }
    if (!closes) {
      if (name == "script") {
        SkipPast(rest, "</script>");
      } else if (name == "style") {
        SkipPast(rest, "</style>");
      } else {
        open.push_back(name);
      }
      continue;
    }
    if (!open.empty() && open.back() == name) {
      open.pop_back();
    } else if (name != "span") {  // the list of category boxes closes its span twice
      return "</" + std::string(name) + "> where " +
             (open.empty() ? "nothing" : "<" + std::string(open.back()) + ">") + " is open";
    }
  }
  return open.empty() ? "" : "<" + std::string(open.back()) + "> is not closed";
}

}  // namespace vela::support
