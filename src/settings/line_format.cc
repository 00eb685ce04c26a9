#include "settings/line_format.h"

#include "text/ascii.h"
#include "text/numbers.h"

namespace vela {

namespace {

void SkipSpace(std::string_view& text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
}

bool SkipLiteral(std::string_view& text, std::string_view literal) {
  if (!text.starts_with(literal)) return false;
  text.remove_prefix(literal.size());
  return true;
}

// Goes past `KEY = `.
bool SkipKey(std::string_view& text, std::string_view key) {
  if (!SkipLiteral(text, key)) return false;
  SkipSpace(text);
  if (!SkipLiteral(text, "=")) return false;
  SkipSpace(text);
  return true;
}

bool TakeQuoted(std::string_view text, std::string_view& value) {
  if (!SkipLiteral(text, "\"")) return false;
  const std::string_view quoted = text.substr(0, text.find('"'));
  if (quoted.empty()) return false;
  value = quoted;
  return true;
}

}  // namespace

std::string_view FirstToken(std::string_view line) {
  SkipSpace(line);
  size_t length = 0;
  while (length < line.size() && !IsSpace(line[length])) ++length;
  return line.substr(0, length);
}

bool ParseInteger(std::string_view line, std::string_view key, int32_t& value) {
  if (!SkipKey(line, key)) return false;
  const DecimalResult number = ScanDecimal32(line);
  if (number.consumed == 0) return false;
  value = number.value;
  return true;
}

bool ParseQuoted(std::string_view line, std::string_view key, std::string_view& value) {
  return SkipKey(line, key) && TakeQuoted(line, value);
}

bool ParseQuotedAfterToken(std::string_view line, std::string_view& value) {
  const std::string_view token = FirstToken(line);
  SkipSpace(line);
  return SkipKey(line, token) && TakeQuoted(line, value);
}

bool ParseRest(std::string_view line, std::string_view key, std::string_view& value) {
  if (!SkipKey(line, key)) return false;
  const std::string_view rest = line.substr(0, line.find('\n'));
  if (rest.empty()) return false;
  value = rest;
  return true;
}

}  // namespace vela
