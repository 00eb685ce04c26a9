#include "inspector/findings/json_text.h"

#include <cstdio>

#include "text/ascii.h"
#include "text/utf8.h"

namespace vela::inspector {

JsonText& JsonText::Open(std::string_view key, char bracket) {
  Key(key);
  text_ += bracket;
  return *this;
}

JsonText& JsonText::Close(char bracket) {
  text_ += bracket;
  return *this;
}

JsonText& JsonText::Text(std::string_view key, std::string_view value) {
  Key(key);
  Quote(value);
  return *this;
}

JsonText& JsonText::Flag(std::string_view key, bool value) {
  Key(key);
  text_ += value ? "true" : "false";
  return *this;
}

void JsonText::Key(std::string_view key) {
  if (!text_.empty() && text_.back() != '{' && text_.back() != '[') text_ += ',';
  if (key.empty()) return;
  Quote(key);
  text_ += ':';
}

void JsonText::Quote(std::string_view text) {
  text_ += '"';
  for (size_t at = 0; at < text.size();) {
    size_t length = 0;
    const char32_t c = DecodeCharacter(text, at, length);
    const char byte = text[at];
    if (c == kReplacementCharacter) {
      text_ += "\\ufffd";
    } else if (length == 1 && IsControl(byte)) {
      char escaped[8];
      snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(byte));
      text_ += escaped;
    } else {
      if (byte == '"' || byte == '\\') text_ += '\\';
      text_.append(text, at, length);
    }
    at += length;
  }
  text_ += '"';
}

}  // namespace vela::inspector
