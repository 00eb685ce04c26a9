#include "indexer/report/json_text.h"

#include <cstdio>

#include "text/ascii.h"

namespace vela::indexer {

namespace {

void AppendName(std::string_view name, std::string& out) {
  out += out.ends_with('{') ? "\"" : ",\"";
  out.append(name).append("\":");
}

}  // namespace

void AppendJsonText(std::string_view text, std::string& out) {
  out += '"';
  for (const char c : text) {
    if (IsControl(c)) {
      char escaped[8];
      snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
      out += escaped;
      continue;
    }
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  out += '"';
}

void AppendMember(std::string_view name, std::string_view text, std::string& out) {
  AppendName(name, out);
  AppendJsonText(text, out);
}

void AppendMember(std::string_view name, uint64_t number, std::string& out) {
  AppendName(name, out);
  out += std::to_string(number);
}

void AppendSeconds(std::string_view name, double seconds, std::string& out) {
  char text[40];
  snprintf(text, sizeof text, "%.3f", seconds);
  AppendName(name, out);
  out += text;
}

}  // namespace vela::indexer
